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

TEST_F(CarregarRegras, CamposEVariaveisDeCadaRegra) {
  estacao.Regra(1, true, "28", "(X1)% de chance", {"80", "Sim", "Ritmo:Calmo", "", "", "", "", "", "", "dez"})
      .Regra(1, false, "99")
      .GravarRegras();
  Carregar();
  ASSERT_EQ(Quantidade(), 2);
  EXPECT_EQ(Regra(0).ID, u"28");
  EXPECT_EQ(Regra(0).Descricao, u"(X1)% de chance");
  EXPECT_EQ(Regra(0).Valor(1), u"80");
  EXPECT_EQ(Regra(0).Valor(10), u"dez");
  EXPECT_EQ(Regra(1).ID, u"99");
}

TEST_F(CarregarRegras, SoAOuAMinusculoAtivam) {
  const char* marcas[] = {"A", "a", "A ", " A", "I", ""};
  std::string arquivo;
  for (const char* marca : marcas) {
    arquivo += EstacaoTeste::Codificada(marca) + "\n";
    for (int k = 1; k < kLinhasPorRegra; ++k) arquivo += EstacaoTeste::Codificada("01") + "\n";
  }
  estacao.GravarTexto("lxie1.rdb", arquivo);
  Carregar();
  ASSERT_EQ(Quantidade(), 6);
  const bool esperado[] = {true, true, false, false, false, false};
  for (long r = 0; r < 6; ++r) EXPECT_EQ(Regra(r).Ativo, esperado[r]) << "marca '" << marcas[r] << "'";
}

TEST_F(CarregarRegras, SoRegistrosCompletosContam) {
  estacao.Regra(1, true, "01").GravarRegras();
  const std::string uma = estacao.Ler("lxie1.rdb");
  // 27 lines: the second record lacks its Var10 but its other fields are written.
  estacao.Regra(1, true, "12", "", {"3", "", "", "", "", "", "", "", "nove", "dez"}).GravarRegras();
  std::string segunda = estacao.Ler("lxie1.rdb");
  segunda.erase(segunda.rfind('\n', segunda.size() - 2) + 1);
  estacao.GravarTexto("lxie1.rdb", uma + segunda);
  Carregar();
  EXPECT_EQ(Quantidade(), 1);
  EXPECT_EQ(Regra(1).ID, u"12");
  EXPECT_EQ(Regra(1).Valor(9), u"nove");
  EXPECT_EQ(Regra(1).Valor(10), u"");

  estacao.GravarTexto("lxie1.rdb", "");
  Carregar();
  EXPECT_EQ(Quantidade(), 0);
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
