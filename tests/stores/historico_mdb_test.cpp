#include "stores/historico_mdb.h"

#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "apoio/estado_teste.h"
#include "stores/historico_banco.h"

namespace lumavox {
namespace {

using teste::ErroDe;

const fs::path kDateTest = fs::path(LUMAVOX_FIXTURES) / "jet4-datetest.mdb";

class TabelaJet : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(kDateTest)) GTEST_SKIP() << "fixture missing: " << kDateTest;
  }
};

TEST_F(TabelaJet, LeLongDataHoraETextoEColunaAusenteFalha) {
  const auto linhas = LerTabelaMdb(kDateTest, "DateTest", {"IDCol", "datetimecol", "DateCol", "ShortTextCol"});
  ASSERT_EQ(linhas.size(), 6u);
  EXPECT_EQ(linhas[0][0], ValorBanco(1.0));
  EXPECT_EQ(linhas[0][1], ValorBanco(MontarDataHora(2021, 12, 2)));
  EXPECT_EQ(linhas[0][3], ValorBanco(Texto(u"Hello")));
  EXPECT_EQ(linhas[1][1], ValorBanco(MontarDataHora(9999, 1, 1)));
  // A date before day zero, which libmdb's own text form cannot show.
  EXPECT_EQ(linhas[2][1], ValorBanco(MontarDataHora(1898, 1, 1)));
  // A missing column fails the read (a missing table is the next test's).
  EXPECT_TRUE(ErroDe([] { LerTabelaMdb(kDateTest, "DateTest", {"IDCol", "Tipo"}); }));
}

// A Jet file without Logs opens, so the load clears the plays and stops at the first query.
TEST_F(TabelaJet, SemTabelaLogsParaNaPrimeiraConsulta) {
  teste::EstacaoTeste estacao;
  fs::copy_file(kDateTest, estacao.Caminho(kArquivoLogsMdb));
  teste::EstadoTeste estado;
  estado->SubstituirHistorico([&](Historico& h) {
    h.HistoricoCodigos[-1] = 5;
    h.HistoricoTipo4[0] = true;
    OrigemHistoricoBanco(estacao.Pasta()).CarregarMusicasTocadas(h, estado->acervo());
  });
  EXPECT_EQ(estado->historico().HistoricoCodigos[-1], 0);
  EXPECT_TRUE(estado->historico().HistoricoTipo4[0]);
}

}  // namespace
}  // namespace lumavox
