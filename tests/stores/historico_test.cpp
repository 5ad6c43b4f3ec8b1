#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <string>
#include <vector>

#include "apoio/estacao.h"
#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "stores/banco_sqlite.h"
#include "stores/historico_banco.h"
#include "stores/historico_fonte.h"
#include "stores/historico_sqlite.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;
using teste::EstadoTeste;

DataHora Dia(int dia, int hora = 0, int minuto = 0) { return MontarDataHora(2026, 11, dia, hora, minuto, 0); }
const DataHora kAntiga = MontarDataHora(2000, 1, 1);

// A collection of songs 101..103 (slots 0..2) whose history holds marks from an earlier load,
// so every test can tell what a load changed from what it left alone.
class CargaHistorico : public ::testing::Test {
 protected:
  CargaHistorico() {
    estado.Musica(101).Musica(102).Musica(103);
    estado->SubstituirHistorico([](Historico& h) {
      for (long p = -501; p <= 0; ++p) {
        h.HistoricoCodigos[p] = 7;
        h.HistoricoDatas[p] = kAntiga;
      }
      h.HistoricoTipo4[1] = true;
      h.HistoricoTipo5(1, 0) = true;
      h.HistoricoTipo5Datas(1, 0) = kAntiga;
    });
  }
  const Historico& H() { return estado->historico(); }
  // The newest plays, newest first, as code and date.
  void ConferirTocadas(std::vector<std::pair<int32_t, DataHora>> t) {
    for (long p = 0; p < static_cast<long>(t.size()); ++p)
      EXPECT_EQ(std::pair(H().HistoricoCodigos[-1 - p], H().HistoricoDatas[-1 - p]), t[p]) << p;
  }
  fs::path Banco() const { return estacao.Caminho(kArquivoLogsSqlite); }
  void Carregar() {
    OrigemHistoricoBanco origem(estacao.Pasta());
    Carregar(origem);
  }
  void Carregar(OrigemHistorico& origem) {
    estado->SubstituirHistorico([&](Historico& h) { origem.CarregarMusicasTocadas(h, estado->acervo()); });
  }
  void Carregar(FonteLogs& fonte) {
    estado->SubstituirHistorico([&](Historico& h) { CarregarMusicasTocadas(h, estado->acervo(), fonte); });
  }

  EstadoTeste estado;
  EstacaoTeste estacao;
};

TEST_F(CargaHistorico, QuinhentasTocadasMaisNovasEMarcasDeTipo4E5PorSlot) {
  estado->CarregarAcervo([](Acervo& a) {
    a.AcervoCodigos[10] = 900;  // stale slot past the loaded songs
    a.AcervoCodigos[11] = 102;  // a later copy of a loaded code
  });
  std::vector<RegistroLog> r;
  for (int i = 1; i <= 600; ++i) r.push_back({1000 + i, SomarSegundos(Dia(1), 60 * i), 0});
  // Twelve type-5 entries of song 103, out of order: days 1..12 at 08:00. Code 555 is not in the
  // collection. Entries of other types, though newer, never reach the plays.
  for (int d : {5, 1, 12, 7, 3, 9, 11, 2, 8, 4, 10, 6}) r.push_back({103, Dia(d, 8), 5});
  r.insert(r.end(), {{102, Dia(3), 4}, {900, Dia(2), 4}, {900, Dia(2), 5}, {555, Dia(2), 4}, {555, Dia(2), 5}});
  BancoLogs(Banco()).Registrar(r);
  Carregar();
  EXPECT_EQ(H().HistoricoCodigos[-1], 1600);
  EXPECT_EQ(H().HistoricoCodigos[-500], 1101);
  EXPECT_EQ(H().HistoricoDatas[-500], SomarSegundos(Dia(1), 60 * 101));
  // Outside the database's positions nothing is touched.
  EXPECT_EQ(std::pair(H().HistoricoCodigos[-501], H().HistoricoCodigos[0]), std::pair(7, 7));
  EXPECT_TRUE(H().HistoricoTipo4[1] && H().HistoricoTipo4[10]);  // the first slot of a code
  EXPECT_TRUE(H().HistoricoTipo5(10, 0));
  EXPECT_EQ(H().HistoricoTipo5Datas(10, 0), Dia(2));
  for (int k = 0; k < kDatasTipo5; ++k)  // the newest ten, newest first
    EXPECT_TRUE(H().HistoricoTipo5(2, k) && H().HistoricoTipo5Datas(2, k) == Dia(12 - k, 8)) << k;
  // Neither the later copy nor the old type-5 mark stays marked.
  EXPECT_FALSE(H().HistoricoTipo4[11] || H().HistoricoTipo5(1, 0));
}

// Rows handed over as written; each query's walk breaks `falhaApos` rows in (0: it cannot run).
struct FonteFalsa : FonteLogs {
  struct Cursor : CursorLogs {
    std::vector<LinhaLogs> linhas;
    size_t falhaApos = SIZE_MAX, i = 0;
    bool Proxima(LinhaLogs& l) override {
      if (i == falhaApos) throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, "broken");
      if (i == linhas.size()) return false;
      l = linhas[i++];
      return true;
    }
  };
  void Abrir() override {}
  std::unique_ptr<CursorLogs> Consultar(ConsultaLogs c) override {
    return std::make_unique<Cursor>(consultas[static_cast<int>(c)]);
  }
  Cursor consultas[3];
};

TEST_F(CargaHistorico, ValorRuimPulaSoAquelaAtribuicaoEConsultaQueFalhaEncerraACarga) {
  FonteFalsa f;
  f.consultas[0].linhas = {{1.0, 101.0, Dia(3)},
                 {2.0, 3e9, Dia(2)},                          // code overflows: date still lands
                 {3.0, Texto(u"102"), Texto(u"not a date")},  // date stays as it was
                 {4.0, std::monostate{}, Texto(u"2026-11-01 10:00:00")}};
  f.consultas[static_cast<int>(ConsultaLogs::Tipo4)].falhaApos = 0;
  Carregar(f);
  ConferirTocadas({{101, Dia(3)}, {0, Dia(2)}, {102, kAntiga}, {0, Dia(1, 10)}});
  // Positions the rows do not reach lose their codes but keep their dates.
  for (long p = -500; p <= -5; ++p) ASSERT_EQ(H().HistoricoCodigos[p], 0) << p;
  EXPECT_EQ(H().HistoricoDatas[-5], kAntiga);
  EXPECT_FALSE(H().HistoricoTipo4[1]);    // cleared before the query failed
  EXPECT_TRUE(H().HistoricoTipo5(1, 0));  // never reached

  FonteFalsa g;
  g.consultas[2].linhas = {{5.0, 101.0, Dia(3)}, {5.0, 102.0, Dia(2)}};
  g.consultas[static_cast<int>(ConsultaLogs::Tipo5)].falhaApos = 1;
  Carregar(g);
  EXPECT_TRUE(H().HistoricoTipo5(0, 0));
  EXPECT_FALSE(H().HistoricoTipo5(1, 0));
}

// The player logs while the engine reads: neither waits for the other, and the engine writes
// nothing into the database. Dates held as texts load as the general reading takes them, in the
// writer's form or another; a text that is no date leaves the date an earlier load put there.
TEST_F(CargaHistorico, LeituraEGravacaoNaoSeBloqueiamEDatasDeTexto) {
  BancoLogs jogador(Banco());
  auto Sql = [&](const char* sql) {
    return sqlite3_exec(jogador.Conexao(), sql, nullptr, nullptr, nullptr);
  };
  ASSERT_EQ(Sql("INSERT INTO Logs (Musica, Data, Tipo) VALUES (101, '2026-11-22 10:00:00', 0), "
                "(102, '22/11/2026 9:30', 0), (103, '2026-02-29 10:00:00', 0), "
                "(101, '2026-11-22T08:00:00', 0), (102, '2026-11-21 07:00:00', 5), "
                "(102, '2026-13-01 07:00:00', 5);"),
            SQLITE_OK);

  // A reader in the middle of its read: the player still logs at once.
  sqlite3* leitor = nullptr;
  ASSERT_EQ(sqlite3_open_v2(Banco().c_str(), &leitor, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_stmt* consulta = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(leitor, "SELECT Musica FROM Logs", -1, &consulta, nullptr), SQLITE_OK);
  ASSERT_EQ(sqlite3_step(consulta), SQLITE_ROW);
  sqlite3_busy_timeout(jogador.Conexao(), 0);
  EXPECT_NO_THROW(jogador.Registrar({103, Dia(22, 10), 0}));
  sqlite3_finalize(consulta);
  sqlite3_close(leitor);

  // The player in the middle of a write: the engine loads what was committed, without waiting.
  ASSERT_EQ(Sql("BEGIN IMMEDIATE; INSERT INTO Logs (Musica, Data, Tipo) "
                "VALUES (101, '2026-11-22 11:00:00', 0);"),
            SQLITE_OK);
  const std::string antes = estacao.Ler(kArquivoLogsSqlite);
  const auto inicio = std::chrono::steady_clock::now();
  Carregar();
  EXPECT_LT(std::chrono::steady_clock::now() - inicio, std::chrono::milliseconds(500));
  EXPECT_EQ(estacao.Ler(kArquivoLogsSqlite), antes);
  Sql("COMMIT");
  // The newest committed play first; the 11:00 one was not yet.
  ConferirTocadas({{103, Dia(22, 10)}, {101, Dia(22, 8)}, {103, kAntiga}, {102, Dia(22, 9, 30)},
                   {101, Dia(22, 10)}});
  // Newest text first: the month-13 row takes the first place and keeps its old date.
  EXPECT_TRUE(H().HistoricoTipo5(1, 0) && H().HistoricoTipo5(1, 1));
  EXPECT_EQ(std::pair(H().HistoricoTipo5Datas(1, 0), H().HistoricoTipo5Datas(1, 1)),
            std::pair(kAntiga, Dia(21, 7)));
}

// A connection kept between loads reads what the writer added since, and a file put in the
// database's place is opened anew.
TEST_F(CargaHistorico, ConexaoMantidaEntreCargas) {
  OrigemHistoricoBanco origem(estacao.Pasta(), true);
  {
    BancoLogs jogador(Banco());
    jogador.Registrar({101, Dia(22, 9), 0});
    Carregar(origem);
    jogador.Registrar({102, Dia(22, 10), 0});
    Carregar(origem);
    ConferirTocadas({{102, Dia(22, 10)}, {101, Dia(22, 9)}});
  }
  BancoLogs(estacao.Caminho("copia.db")).Registrar({103, Dia(22, 11), 0});
  for (const char* resto : {"-wal", "-shm"}) fs::remove(Banco().string() + resto);
  fs::rename(estacao.Caminho("copia.db"), Banco());
  Carregar(origem);
  ConferirTocadas({{103, Dia(22, 11)}, {0, Dia(22, 9)}});
}

TEST(ValoresDoBanco, DatasOleENumeros) {
  EXPECT_EQ(DataHoraDeOle(44532.5), MontarDataHora(2021, 12, 2, 12, 0, 0));
  // Before day zero the fraction still counts forward from the start of the day.
  EXPECT_EQ(DataHoraDeOle(-1.25), MontarDataHora(1899, 12, 29, 6, 0, 0));
  EXPECT_EQ(DataHoraDeOle(1.0 + 59.6 / 86400), MontarDataHora(1899, 12, 31, 0, 1, 0));
  EXPECT_EQ(teste::ErroDe([] { DataHoraDeOle(3e6); }), CodigoErro::Estouro);
  EXPECT_EQ(teste::ErroDe([] { DataDoValor(std::monostate{}); }), CodigoErro::TiposIncompativeis);
}

}  // namespace
}  // namespace lumavox
