#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "base/vetor.h"

using namespace lumavox;

namespace {

template <typename F>
bool ForaDoIntervalo(F&& f) {
  return teste::ErroDe(f) == CodigoErro::ForaDoIntervalo;
}

}  // namespace

TEST(Vetor, CadaIndiceVerificadoComLimitesNegativosInclusivos) {
  Vetor<int, -4000, 4000> v;
  v[-4000] = 1;
  v[4000] = 3;
  EXPECT_EQ(v[-4000] + v[4000], 4);
  EXPECT_TRUE(ForaDoIntervalo([&] { v[-4001]; }));
  EXPECT_TRUE(ForaDoIntervalo([&] { v[4001]; }));

  Matriz<int, 3, 4> m;
  m(2, 3) = 5;
  EXPECT_EQ(m(2, 3), 5);
  EXPECT_TRUE(ForaDoIntervalo([&] { m(3, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { m(0, 4); }));  // would alias m(1, 0) unchecked
  EXPECT_TRUE(ForaDoIntervalo([&] { m(-1, 0); }));

  Cubo<int, 6, 360, 6> c;
  c(5, 359, 5) = 9;
  EXPECT_EQ(c(5, 359, 5), 9);
  EXPECT_EQ(c(0, 359, 5), 0);
  EXPECT_TRUE(ForaDoIntervalo([&] { c(6, 0, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { c(0, 360, 0); }));
  EXPECT_TRUE(ForaDoIntervalo([&] { c(0, 0, 6); }));
}
