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
  // Each byte of the AND is 0 or 1, so one multiplication adds the eight of them into the top
  // byte (a bit count would be a library call on processors this build cannot assume).
  for (; i + 8 <= n; i += 8)
    total += static_cast<long>(((PalavraDeFlags(a + i) & PalavraDeFlags(b + i)) * 0x0101010101010101ULL) >> 56);
  for (; i < n; ++i) total += a[i].valor & b[i].valor;
  return total;
}

void ManterOnde(Booleano* a, const Booleano* b, long n) {
  long i = 0;
  for (; i + 8 <= n; i += 8) {
    const uint64_t w = PalavraDeFlags(a + i) & PalavraDeFlags(b + i);
    std::memcpy(static_cast<void*>(a + i), &w, sizeof w);
  }
  for (; i < n; ++i) a[i].valor = a[i].valor && b[i].valor;
}

}  // namespace lumavox
