#include "base/vetor.h"

#include <cstring>

namespace lumavox {

void ErroIndice(long indice, long inicio, long fim) {
  throw ErroExecucao(CodigoErro::ForaDoIntervalo,
                     "Subscript out of range: " + std::to_string(indice) + " fora de " +
                         std::to_string(inicio) + ".." + std::to_string(fim));
}

long ContarAmbos(const Booleano* a, const Booleano* b, long n) {
  long total = 0, i = 0;
#ifdef __SSE2__
  // The sum of absolute differences from zero adds sixteen 0/1 bytes into two counters.
  __m128i soma = _mm_setzero_si128();
  for (; i + 16 <= n; i += 16) {
    const __m128i x = _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i)),
                                    _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i)));
    soma = _mm_add_epi64(soma, _mm_sad_epu8(x, _mm_setzero_si128()));
  }
  total = _mm_cvtsi128_si64(soma) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(soma, soma));
#endif
  // Each byte of the AND is 0 or 1, so one multiplication adds the eight of them into the top
  // byte (a bit count would be a library call on processors this build cannot assume).
  for (; i + 8 <= n; i += 8)
    total += static_cast<long>(((PalavraDeFlags(a + i) & PalavraDeFlags(b + i)) * 0x0101010101010101ULL) >> 56);
  for (; i < n; ++i) total += a[i].valor & b[i].valor;
  return total;
}

void ManterOnde(Booleano* a, const Booleano* b, long n) {
  long i = 0;
#ifdef __SSE2__
  for (; i + 16 <= n; i += 16) {
    auto* destino = reinterpret_cast<__m128i*>(a + i);
    _mm_storeu_si128(destino, _mm_and_si128(_mm_loadu_si128(destino),
                                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i))));
  }
#endif
  for (; i + 8 <= n; i += 8) {
    const uint64_t w = PalavraDeFlags(a + i) & PalavraDeFlags(b + i);
    std::memcpy(static_cast<void*>(a + i), &w, sizeof w);
  }
  for (; i < n; ++i) a[i].valor = a[i].valor && b[i].valor;
}

}  // namespace lumavox
