#include <gtest/gtest.h>

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
