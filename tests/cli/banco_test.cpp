#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "apoio/estacao.h"
#include "apoio/estado_teste.h"
#include "apoio/jet_teste.h"
#include "apoio/linha_comando.h"
#include "stores/banco_sqlite.h"
#include "stores/historico_banco.h"
#include "stores/historico_mdb.h"
#include "stores/historico_sqlite.h"

namespace lumavox::cli {
namespace {

namespace fs = std::filesystem;
using teste::ColunaJet;
using teste::TipoJet;

constexpr int kMusicas = 37;  // codes 1000..1036
const std::vector<ColunaJet> kColunasLogs = {{"Codigo", TipoJet::Longo}, {"Musica", TipoJet::Longo},
                                             {"Data", TipoJet::DataHora}, {"Tipo", TipoJet::Longo}};
const DataHora kInicio = MontarDataHora(2026, 3, 1, 6, 0, 0);

// A station's log as the old player leaves it: over 500 plays numbered out of their order,
// songs marked with types 4 and 5 more than once, another type, and Nulls where Jet allows them.
std::vector<LinhaBanco> LogDaEstacao() {
  std::vector<LinhaBanco> logs;
  for (int i = 0; i < 620; ++i)
    logs.push_back({(i * 7) % 620 + 1.0, 1000.0 + i % kMusicas, SomarSegundos(kInicio, 180 * i), 0.0});
  for (int i = 0; i < 12; ++i) {
    logs.push_back({700.0 + i, 1000.0 + i % 5, SomarSegundos(kInicio, 3600 * i), 4.0});
    logs.push_back({800.0 + i, 1000.0 + i % 3, SomarSegundos(kInicio, -86400 * i), 5.0});
  }
  logs.push_back({900.0, {}, kInicio, 5.0});
  logs.push_back({901.0, 1001.0, {}, 5.0});
  logs.push_back({902.0, 1002.0, MontarDataHora(1898, 1, 1, 12, 0, 0), 5.0});
  logs.push_back({903.0, 1003.0, kInicio, {}});
  logs.push_back({904.0, 1004.0, kInicio, 9.0});
  return logs;
}

class BancoConverter : public ::testing::Test {
 protected:
  teste::ResultadoCli Converter() { return teste::RodarCli({"banco", "converter", "--dir", estacao.Pasta().string()}); }
  void GravarMdb(const std::vector<LinhaBanco>& logs, const std::vector<ColunaJet>& colunas = kColunasLogs) {
    teste::GravarJet(estacao.Caminho(kArquivoLogsMdb), "Logs", colunas, logs);
  }
  // What a fresh engine state loads from the folder as its history, written out whole.
  std::string Historico() const {
    teste::EstadoTeste estado;
    for (int i = 0; i < kMusicas; ++i) estado.Musica(1000 + i);
    estado->SubstituirHistorico([&](lumavox::Historico& h) {
      OrigemHistoricoBanco(estacao.Pasta()).CarregarMusicasTocadas(h, estado->acervo());
    });
    const lumavox::Historico& h = estado->historico();
    std::ostringstream texto;
    for (long p = -500; p <= -1; ++p) texto << h.HistoricoCodigos[p] << "@" << h.HistoricoDatas[p].segundos << " ";
    for (long s = 0; s < kMusicas; ++s) {
      texto << "\n" << h.HistoricoTipo4[s] << ":";
      for (long k = 0; k < kDatasTipo5; ++k)
        texto << " " << h.HistoricoTipo5(s, k) << "@" << h.HistoricoTipo5Datas(s, k).segundos;
    }
    return texto.str();
  }
  teste::EstacaoTeste estacao;
};

// An empty lumavox.db is filled; an earlier conversion's original is kept under its name.
TEST_F(BancoConverter, LevaCadaRegistroEOMotorCarregaOMesmoHistorico) {
  GravarMdb(LogDaEstacao());
  const std::string antes = Historico();
  // The Jet file filled every position and marked songs with both types.
  ASSERT_EQ((" " + antes.substr(0, antes.find('\n'))).find(" 0@"), std::string::npos);
  ASSERT_TRUE(antes.find("\n1:") != std::string::npos && antes.find(" 1@") != std::string::npos);
  estacao.GravarTexto("lumavox.mdb.convertido", "de antes");
  CriarBancoLogs(estacao.Caminho(kArquivoLogsSqlite));

  const auto r = Converter();
  EXPECT_EQ(r.saida, "convertido: 649 registros de lumavox.mdb para lumavox.db; o original ficou em "
                     "lumavox.mdb.convertido.2\n");
  EXPECT_EQ(estacao.Conteudo().size(), 3u);
  EXPECT_EQ(estacao.Ler("lumavox.mdb.convertido"), "de antes");
  EXPECT_TRUE(estacao.Existe("lumavox.mdb.convertido.2"));
  EXPECT_EQ(ContarRegistrosLogs(estacao.Caminho(kArquivoLogsSqlite)), 649);
  EXPECT_EQ(Historico(), antes);
}

// Each refusal is one line on stderr and leaves the folder as it was, file for file.
TEST_F(BancoConverter, RecusasNaoMudamNadaNaPasta) {
  auto Recusa = [&](const std::string& motivo) {
    const auto antes = estacao.Conteudo();
    const auto r = Converter();
    EXPECT_EQ(r.codigo, 1) << motivo;
    EXPECT_EQ(r.erros.rfind("erro: ", 0), 0u) << r.erros;
    EXPECT_NE(r.erros.find(motivo), std::string::npos) << r.erros;
    EXPECT_EQ(std::count(r.erros.begin(), r.erros.end(), '\n'), 1) << r.erros;
    EXPECT_EQ(estacao.Conteudo(), antes) << motivo;
    for (const auto& e : fs::directory_iterator(estacao.Pasta())) fs::remove(e.path());
  };
  Recusa("não há lumavox.mdb");

  estacao.GravarTexto(kArquivoLogsMdb, "não é um arquivo Jet");
  Recusa("lumavox.mdb não pôde ser lido");
  GravarMdb(LogDaEstacao());
  BancoLogs(estacao.Caminho(kArquivoLogsSqlite)).Registrar({1001, kInicio, 0});
  Recusa("lumavox.db já tem 1 registro e");

  // Two entries cannot both keep the same number: nothing is written, not even in part.
  GravarMdb({{1.0, 1000.0, kInicio, 0.0}, {1.0, 1001.0, kInicio, 0.0}});
  Recusa("lumavox.db não foi gravado");

  // Jet groups song codes kept as text ignoring case, SQLite would count "a" and "A" apart.
  auto colunas = kColunasLogs;
  colunas[1].tipo = TipoJet::Texto;
  GravarMdb({{1.0, Texto(u"a"), kInicio, 4.0}, {2.0, Texto(u"A"), kInicio, 4.0}}, colunas);
  Recusa("would not load the type-4 marks");
}

}  // namespace
}  // namespace lumavox::cli
