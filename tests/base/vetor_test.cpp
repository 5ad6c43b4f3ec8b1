#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "apoio/estacao.h"
#include "base/vetor.h"

using namespace lumavox;

TEST(Vetor, CadaIndiceVerificadoComLimitesNegativosInclusivos) {
  Vetor<int, -4000, 4000> v;
  Matriz<int, 3, 4> m;
  Cubo<int, 6, 360, 6> c;
  v[-4000] = 1;
  v[4000] = 3;
  m(2, 3) = 5;
  c(5, 359, 5) = 9;
  EXPECT_EQ(v[-4000] + v[4000] + m(2, 3) + c(5, 359, 5) + c(0, 359, 5), 18);
  // m(0, 4) would alias m(1, 0) unchecked.
  for (const auto& fora : std::initializer_list<std::function<void()>>{
           [&] { v[-4001]; }, [&] { v[4001]; }, [&] { m(3, 0); }, [&] { m(0, 4); }, [&] { m(-1, 0); },
           [&] { c(6, 0, 0); }, [&] { c(0, 360, 0); }, [&] { c(0, 0, 6); }})
    EXPECT_EQ(teste::ErroDe(fora), CodigoErro::ForaDoIntervalo);
}

// The wide helpers against the flag-by-flag loops they replace, on every length around a
// block's edge and at two offsets of a run.
TEST(Vetor, FlagsPorPalavraComoUmaAUma) {
  std::vector<Booleano> a(40), b(40);
  for (size_t i = 0; i < a.size(); ++i) a[i] = (i * 7) % 3 != 0, b[i] = (i * 5) % 4 < 2;
  for (long inicio : {0L, 3L})
    for (long n = 0; n + inicio <= 40; ++n) {
      const Booleano *pa = a.data() + inicio, *pb = b.data() + inicio;
      long ambos = 0;
      std::vector<long> so, visto;
      std::vector<Booleano> mantidos(a), esperados(a);
      for (long i = 0; i < n; ++i) {
        ambos += esperados[inicio + i] = pa[i] && pb[i];
        if (pa[i] && !pb[i]) so.push_back(i);
      }
      EXPECT_EQ(ContarAmbos(pa, pb, n), ambos) << n;
      ParaCadaSoNoPrimeiro(pa, pb, n, [&](long i) { visto.push_back(i); });
      EXPECT_EQ(visto, so) << n;
      ManterOnde(mantidos.data() + inicio, pb, n);
      EXPECT_EQ(mantidos, esperados) << inicio << " " << n;
    }
}
