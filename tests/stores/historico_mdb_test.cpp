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

TEST_F(TabelaJet, LeLongDataHoraETexto) {
  const auto linhas =
      LerTabelaMdb(kDateTest, "DateTest", {"IDCol", "datetimecol", "DateCol", "ShortTextCol"});
  ASSERT_EQ(linhas.size(), 6u);
  EXPECT_EQ(linhas[0][0], ValorBanco(1.0));
  EXPECT_EQ(linhas[0][1], ValorBanco(MontarDataHora(2021, 12, 2)));
  EXPECT_EQ(linhas[0][3], ValorBanco(Texto(u"Hello")));
  EXPECT_EQ(linhas[1][1], ValorBanco(MontarDataHora(9999, 1, 1)));
  // Dates before day zero, which libmdb's own text form cannot show.
  EXPECT_EQ(linhas[2][0], ValorBanco(3.0));
  EXPECT_EQ(linhas[2][1], ValorBanco(MontarDataHora(1898, 1, 1)));
  EXPECT_EQ(linhas[2][2], ValorBanco(MontarDataHora(1899, 1, 1)));
}

TEST_F(TabelaJet, TabelaOuColunaAusenteFalha) {
  EXPECT_TRUE(ErroDe([] { LerTabelaMdb(kDateTest, "Logs", {"Codigo"}); }));
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

LinhaBanco Log(double codigo, ValorBanco musica, ValorBanco data, double tipo) {
  return {codigo, std::move(musica), std::move(data), tipo};
}

TEST(ConsultasJet, FiltroOrdemEAgrupamento) {
  const DataHora d1 = MontarDataHora(2026, 11, 1), d2 = MontarDataHora(2026, 11, 2);
  std::vector<LinhaBanco> logs;
  for (int i = 1; i <= 502; ++i) logs.push_back(Log(i * 2 % 503, static_cast<double>(i), d1, 0));
  logs.push_back(Log(900, 7.0, d1, 4));
  logs.push_back(Log(901, 3.0, d1, 4));
  logs.push_back(Log(902, 7.0, d2, 4));
  logs.push_back(Log(903, 7.0, d1, 5));
  logs.push_back(Log(904, std::monostate{}, d1, 5));
  logs.push_back(Log(905, 7.0, d2, 5));
  logs.push_back(Log(906, 2.0, std::monostate{}, 5));
  logs.push_back(Log(907, 1.0, d1, 50));

  const auto tocadas = AvaliarConsultaLogs(logs, ConsultaLogs::Tocadas);
  ASSERT_EQ(tocadas.size(), 500u);
  EXPECT_EQ(tocadas[0][0], ValorBanco(502.0));
  EXPECT_EQ(tocadas[499][0], ValorBanco(3.0));
  for (size_t i = 1; i < tocadas.size(); ++i)
    ASSERT_GT(std::get<double>(tocadas[i - 1][0]), std::get<double>(tocadas[i][0]));

  const auto tipo4 = AvaliarConsultaLogs(logs, ConsultaLogs::Tipo4);
  ASSERT_EQ(tipo4.size(), 2u);
  EXPECT_EQ(tipo4[0], (LinhaLogs{4.0, 3.0, 1.0}));
  EXPECT_EQ(tipo4[1], (LinhaLogs{4.0, 7.0, 2.0}));

  const auto tipo5 = AvaliarConsultaLogs(logs, ConsultaLogs::Tipo5);
  ASSERT_EQ(tipo5.size(), 4u);
  EXPECT_EQ(tipo5[0][1], ValorBanco(std::monostate{}));  // Null sorts first
  EXPECT_EQ(tipo5[1][1], ValorBanco(2.0));
  EXPECT_EQ(tipo5[2][2], ValorBanco(d2));
  EXPECT_EQ(tipo5[3][2], ValorBanco(d1));
}

}  // namespace
}  // namespace lumavox
