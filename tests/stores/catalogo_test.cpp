#include "stores/catalogo.h"

#include <gtest/gtest.h>

#include "apoio/estacao.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;

class CarregarRegras : public ::testing::Test {
 protected:
  void Carregar() { CarregarArquivoRegras(ArquivosReais(), catalogo, 1, estacao.Caminho("lxie1.rdb")); }
  int Quantidade() const { return catalogo.QuantidadeRegras[1]; }
  const RegrasCatalogo& Regra(long r) const { return catalogo.CatalogoRegras(1, r); }

  EstacaoTeste estacao;
  Catalogo catalogo;
};

TEST_F(CarregarRegras, CamposMarcasEOsRegistrosCompletos) {
  // Only "A" and "a" activate; the flag is never trimmed.
  const std::pair<const char*, bool> marcas[] = {{"A", true}, {"a", true}, {"A ", false}, {" A", false}, {"I", false}};
  std::string arquivo;
  for (const auto& [marca, ativa] : marcas) {
    arquivo += EstacaoTeste::Codificada(marca) + "\n";
    for (int k = 1; k < kLinhasPorRegra; ++k) arquivo += EstacaoTeste::Codificada("01") + "\n";
  }
  estacao.Regra(1, true, "28", "(X1)% de chance", {"80", "Sim", "", "", "", "", "", "", "nove", "dez"});
  estacao.GravarRegras();
  // The last record loses its Var10 line: it does not count, but its fields are written.
  const std::string ultima = estacao.Ler("lxie1.rdb");
  estacao.GravarTexto("lxie1.rdb", arquivo + ultima.substr(0, ultima.rfind('\n', ultima.size() - 2) + 1));
  Carregar();
  ASSERT_EQ(Quantidade(), 5);
  for (long r = 0; r < 5; ++r) EXPECT_EQ(Regra(r).Ativo, marcas[r].second) << "marca '" << marcas[r].first << "'";
  EXPECT_EQ(Regra(5).ID, u"28");
  EXPECT_EQ(Regra(5).Descricao, u"(X1)% de chance");
  EXPECT_EQ(Regra(5).Valor(9), u"nove");
  EXPECT_EQ(Regra(5).Valor(10), u"");
}

TEST_F(CarregarRegras, LimiteDeDuzentasECinquentaESeisRegras) {
  for (int r = 0; r < kRegrasPorConjunto; ++r) estacao.Regra(1, true, "04");
  estacao.GravarRegras();
  Carregar();
  ASSERT_EQ(Quantidade(), kRegrasPorConjunto);

  estacao.Regra(1, true, "05").GravarRegras("extra");
  estacao.GravarTexto("lxie1.rdb", estacao.Ler("lxie1.rdb") + estacao.Ler("extra/lxie1.rdb"));
  EXPECT_EQ(ErroDe([&] { Carregar(); }), CodigoErro::ForaDoIntervalo);
  EXPECT_EQ(Quantidade(), kRegrasPorConjunto);
}

}  // namespace
}  // namespace lumavox
