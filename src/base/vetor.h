// Fixed-size arrays with declared bounds. Going past a bound raises error 9 instead of
// resizing or corrupting memory: the engine's arrays never grow.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "base/erro.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lumavox {

[[noreturn]] void ErroIndice(long indice, long inicio, long fim);

// A True/False flag that can live in the arrays below (std::vector<bool> hands out no
// references).
struct Booleano {
  bool valor = false;
  Booleano() = default;
  Booleano(bool v) : valor(v) {}
  operator bool() const { return valor; }
};
static_assert(sizeof(Booleano) == 1);

// Wide work on runs of flags, for loops that run over the whole collection for every rule: a
// flag is one byte holding 0 or 1, so sixteen are combined at once (eight without SSE2).
// How many i in [0, n) have both a[i] and b[i].
long ContarAmbos(const Booleano* a, const Booleano* b, long n);
// a[i] = a[i] && b[i] for i in [0, n).
void ManterOnde(Booleano* a, const Booleano* b, long n);
// Calls usar(i), in order, for each i in [0, n) with a[i] and not b[i].
template <typename F>
void ParaCadaSoNoPrimeiro(const Booleano* a, const Booleano* b, long n, F&& usar);

// Indexes run from Inicio to Fim inclusive, like the station's arrays (e.g. -4000..4000).
template <typename T, long Inicio, long Fim>
class Vetor {
 public:
  static constexpr long kInicio = Inicio;
  static constexpr long kFim = Fim;
  static constexpr long kTamanho = Fim - Inicio + 1;

  Vetor() : dados_(kTamanho) {}

  T& operator[](long i) { return dados_[Posicao(i)]; }
  const T& operator[](long i) const { return dados_[Posicao(i)]; }

  // Unchecked access for hot loops whose bounds were checked once by the caller.
  T& SemVerificar(long i) { return dados_[static_cast<size_t>(i - Inicio)]; }
  const T& SemVerificar(long i) const { return dados_[static_cast<size_t>(i - Inicio)]; }

  void Preencher(const T& valor) { std::fill(dados_.begin(), dados_.end(), valor); }

 private:
  static size_t Posicao(long i) {
    if (i < Inicio || i > Fim) ErroIndice(i, Inicio, Fim);
    return static_cast<size_t>(i - Inicio);
  }
  std::vector<T> dados_;  // heap-held so large arrays do not weigh on the stack
};

// Two-dimensional array, both indexes from 0.
template <typename T, long Linhas, long Colunas>
class Matriz {
 public:
  Matriz() : dados_(static_cast<size_t>(Linhas * Colunas)) {}

  T& operator()(long l, long c) { return dados_[Posicao(l, c)]; }
  const T& operator()(long l, long c) const { return dados_[Posicao(l, c)]; }

  void Preencher(const T& valor) { std::fill(dados_.begin(), dados_.end(), valor); }

 private:
  static size_t Posicao(long l, long c) {
    if (l < 0 || l >= Linhas) ErroIndice(l, 0, Linhas - 1);
    if (c < 0 || c >= Colunas) ErroIndice(c, 0, Colunas - 1);
    return static_cast<size_t>(l * Colunas + c);
  }
  std::vector<T> dados_;
};

inline uint64_t PalavraDeFlags(const Booleano* p) {
  uint64_t w;
  std::memcpy(&w, p, sizeof w);
  return w;
}

template <typename F>
void ParaCadaSoNoPrimeiro(const Booleano* a, const Booleano* b, long n, F&& usar) {
  long i = 0;
#ifdef __SSE2__
  for (; i + 16 <= n; i += 16) {
    const __m128i x = _mm_andnot_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i)),
                                       _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i)));
    // Each 0/1 byte moved to its top bit gives one mask bit per flag, in slot order.
    for (auto m = static_cast<unsigned>(_mm_movemask_epi8(_mm_slli_epi16(x, 7))); m != 0; m &= m - 1)
      usar(i + std::countr_zero(m));
  }
#endif
  for (; i + 8 <= n; i += 8) {
    // Flags are 0 or 1, so the set bits of the word are at the start of the bytes wanted, and
    // they come out lowest first, in slot order.
    for (uint64_t w = PalavraDeFlags(a + i) & ~PalavraDeFlags(b + i); w != 0; w &= w - 1)
      usar(i + std::countr_zero(w) / 8);
  }
  for (; i < n; ++i)
    if (a[i] && !b[i]) usar(i);
}

}  // namespace lumavox

namespace lumavox {

// Three-dimensional array, all indexes from 0.
template <typename T, long A, long B, long C>
class Cubo {
 public:
  Cubo() : dados_(static_cast<size_t>(A * B * C)) {}

  T& operator()(long a, long b, long c) { return dados_[Posicao(a, b, c)]; }
  const T& operator()(long a, long b, long c) const { return dados_[Posicao(a, b, c)]; }

  void Preencher(const T& valor) { std::fill(dados_.begin(), dados_.end(), valor); }

 private:
  static size_t Posicao(long a, long b, long c) {
    if (a < 0 || a >= A) ErroIndice(a, 0, A - 1);
    if (b < 0 || b >= B) ErroIndice(b, 0, B - 1);
    if (c < 0 || c >= C) ErroIndice(c, 0, C - 1);
    return static_cast<size_t>((a * B + b) * C + c);
  }
  std::vector<T> dados_;
};

}  // namespace lumavox
