#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "base/vetor.h"

using namespace lumavox;

namespace {

template <typename F>
bool ForaDoIntervalo(F&& f) {
  try {
    f();
  } catch (const ErroExecucao& e) {
    return e.Codigo() == CodigoErro::ForaDoIntervalo;
  }
  return false;
}

}  // namespace

TEST(Vetor, LimitesNegativosInclusivos) {
  Vetor<int, -4000, 4000> v;
  v[-4000] = 1;
  v[0] = 2;
  v[4000] = 3;
  EXPECT_EQ(v[-4000] + v[0] + v[4000], 6);
  EXPECT_EQ(v.SemVerificar(-4000), 1);
  EXPECT_TRUE(ForaDoIntervalo([&] { v[-4001]; }));
  EXPECT_TRUE(ForaDoIntervalo([&] { v[4001]; }));
  v.Preencher(7);
  EXPECT_EQ(v[-1], 7);
}

TEST(Vetor, MatrizECuboVerificamCadaIndice) {
  Matriz<int, 3, 4> m;
  m(2, 3) = 5;
  m(0, 0) = 1;
  EXPECT_EQ(m(2, 3), 5);
  EXPECT_EQ(m(0, 0), 1);
  EXPECT_TRUE(ForaDoIntervalo([&] { m(3, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { m(0, 4); }));  // would alias m(1, 0) unchecked
  EXPECT_TRUE(ForaDoIntervalo([&] { m(-1, 0); }));

  Cubo<int, 6, 360, 6> c;
  c(5, 359, 5) = 9;
  c(1, 0, 0) = 4;
  EXPECT_EQ(c(5, 359, 5), 9);
  EXPECT_EQ(c(0, 359, 5), 0);
  EXPECT_TRUE(ForaDoIntervalo([&] { c(6, 0, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { c(0, 360, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { c(0, 0, 6); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { c(0, -1, 0); }));
}

// The word-wide helpers against the flag-by-flag loops they replace, on every length around a
// word's edge and at every offset of a run.
TEST(Vetor, FlagsPorPalavraComoUmaAUma) {
  std::mt19937 sorte(3);
  std::vector<Booleano> a(40), b(40);
  for (int rodada = 0; rodada < 200; ++rodada) {
    for (size_t i = 0; i < a.size(); ++i) {
      a[i] = sorte() % 3 != 0;
      b[i] = sorte() % 2 != 0;
    }
    for (long inicio : {0L, 3L}) {
      for (long n = 0; n + inicio <= 40; ++n) {
        const Booleano* pa = a.data() + inicio;
        const Booleano* pb = b.data() + inicio;
        long ambos = 0;
        std::vector<long> so, visto;
        for (long i = 0; i < n; ++i) {
          ambos += pa[i] && pb[i];
          if (pa[i] && !pb[i]) so.push_back(i);
        }
        ASSERT_EQ(ContarAmbos(pa, pb, n), ambos);
        ParaCadaSoNoPrimeiro(pa, pb, n, [&](long i) { visto.push_back(i); });
        ASSERT_EQ(visto, so);
        std::vector<Booleano> c(a);
        ManterOnde(c.data() + inicio, pb, n);
        for (long i = 0; i < 40; ++i) {
          const bool dentro = i >= inicio && i < inicio + n;
          ASSERT_EQ(bool(c[static_cast<size_t>(i)]), dentro ? a[static_cast<size_t>(i)] && pb[i - inicio] : bool(a[static_cast<size_t>(i)]));
        }
      }
    }
  }
}
