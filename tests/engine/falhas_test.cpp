// The engine under broken files, folders, databases and clocks: each fault leaves it choosing
// as its documented behaviour says, and the station folder loses only what the run deletes.
#include <sqlite3.h>

#include <map>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "apoio/sistema_arquivos_falho.h"
#include "base/numeros.h"
#include "cli/demo.h"
#include "engine/motor.h"
#include "stores/banco_sqlite.h"
#include "stores/historico_banco.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

class Falhas : public ::testing::Test {
 protected:
  Falhas() { ambiente.DefinirArquivos(arquivos); }

  // `musicas` songs with codes 1.. and a media file each, plus one empty rule set.
  void Montar(int musicas = 60) {
    for (int c = 1; c <= musicas; ++c) estacao.Musica(c, {{"Genero", c % 2 ? "Rock;" : "Pop;"}, {"DuracaoSec", "200"}});
    estacao.GravarAcervo();
    estacao.Regra(0, true, "01", "", {"Genero:Rock"});
    estacao.GravarRegras();
    estacao.GravarTexto("ritmo.rer", "50\r\n");
    Ligar();
  }
  void Ligar() {
    motor = std::make_unique<Motor>(estacao.Pasta(), ambiente);
    motor->DefinirOrigemHistorico(std::make_unique<OrigemHistoricoBanco>(estacao.Pasta()));
    motor->Iniciar();
    preservados = Preservados();
  }

  std::vector<std::string> Fila() const { return estacao.Nomes("list", ".lre"); }
  // The player takes the first queue entry and its media.
  void Tocar() {
    const std::vector<std::string> fila = Fila();
    if (fila.empty()) return;
    fs::remove(estacao.Caminho("list") / fila.front());
    fs::remove(estacao.Caminho("temp") / (fila.front().substr(0, 6) + ".mrt"));
  }
  // Songs play until the engine has checked the playlist often enough to reload it.
  void TocarAteRecarregar() {
    for (int i = 0; i < 7; ++i) {
      Tocar();
      motor->TestarRegras();
    }
  }
  size_t Midias() const { return estacao.Nomes("temp", ".mrt").size(); }
  // Both songs of the queue handed over, each with its media.
  bool Cheia() const { return Fila().size() == 2 && Midias() == 2; }

  // Every file of the station the run has no business deleting, with its bytes.
  std::map<std::string, std::string> Preservados() const {
    std::map<std::string, std::string> bytes = estacao.Conteudo();
    std::erase_if(bytes, [](const auto& item) {
      const std::string& nome = item.first;
      // SQLite's own companions of a database in write-ahead mode come and go with its connections.
      return nome.starts_with("list/") || nome.starts_with("temp/") || nome == "avancar.rer" || nome == "nreg.rer" ||
             nome.ends_with("-wal") || nome.ends_with("-shm");
    });
    return bytes;
  }
  // The files the run must leave alone are all still there, unchanged, but for those the test
  // itself changed.
  void ConferirPreservados(const std::set<std::string>& mudadosPeloTeste = {}) const {
    const auto agora = Preservados();
    for (const auto& [nome, bytes] : preservados)
      EXPECT_TRUE(mudadosPeloTeste.count(nome) || (agora.count(nome) && agora.at(nome) == bytes)) << nome << " mudou";
  }

  EstacaoTeste estacao;
  // The engine's files, where a test refuses an operation the way a read-only disk would.
  teste::SistemaArquivosFalho arquivos;
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0), 3};
  std::unique_ptr<Motor> motor;
  std::map<std::string, std::string> preservados;
};

// Gone, empty, or refused to the engine: the level stays after 100 tries. Not a number is level
// 0 and the queue is chosen again; rounding to the level in force changes nothing and the queue
// is only topped up as the songs play.
TEST_F(Falhas, RitmoAusenteVazioOuIlegivelMantemONivel) {
  Montar();
  ASSERT_EQ(motor->TestarRegras().selecoes.size(), 2u);
  const std::tuple<const char*, size_t, int, int> casos[] = {
      {nullptr, 1, 50, 100}, {"", 1, 50, 100}, {"80", 1, 50, 100}, {"rápido", 2, 0, 0},
      {"0,4", 1, 0, 0}};
  for (const auto& [texto, escolhas, nivel, tentativas] : casos) {
    const std::string caso = texto ? texto : "ausente";
    texto ? estacao.GravarTexto("ritmo.rer", caso) : void(fs::remove(estacao.Caminho("ritmo.rer")));
    if (caso == "80") arquivos.NegarLeitura(estacao.Caminho("ritmo.rer"));
    Tocar();
    const ResultadoExecucao r = motor->TestarRegras();
    arquivos.Permitir();
    ASSERT_EQ(r.selecoes.size(), escolhas) << "[" << caso << "]";
    EXPECT_EQ(r.selecoes.back().nivel, nivel) << caso;
    EXPECT_TRUE(Cheia()) << caso;
    EXPECT_EQ(motor->E().execucao.Tentativas, tentativas) << caso;
    for (const std::string& nome : Fila()) EXPECT_TRUE(nome.ends_with(FormatarZeros(nivel, 3) + ".lre")) << nome;
  }
  ConferirPreservados({"ritmo.rer"});
}

TEST_F(Falhas, AvancoQueNaoSePodeApagarContaUmaVez) {
  Montar();
  motor->TestarRegras();
  estacao.GravarTexto("avancar.rer", "1\r\n");
  // The click cannot be deleted after it is read, as in a folder the engine may not write.
  arquivos.NegarApagar(estacao.Caminho("avancar.rer"));
  // The first call voids the queue for the click and fills it again; the songs played after it
  // only top it up: the file still there is not a new click.
  for (int i = 0; i < 4; ++i) {
    Tocar();
    EXPECT_EQ(motor->TestarRegras().selecoes.size(), i == 0 ? 2u : 1u) << "chamada " << i;
    EXPECT_TRUE(Cheia());
  }
  EXPECT_EQ(motor->E().execucao.ContagemAvancos, 1);
  // The player clicks again: the file changes and counts as a new advance.
  estacao.GravarTexto("avancar.rer", "1\r\n\r\n");
  Tocar();
  EXPECT_EQ(motor->TestarRegras().selecoes.size(), 2u);
  EXPECT_EQ(motor->E().execucao.ContagemAvancos, 2);
}

// The hand-over folders gone, a disk full while the media is written, with room for the media
// but not its queue entry, or a queue entry that cannot be renamed into place: nothing is left
// half-way, and the queue fills again once the fault is gone.
TEST_F(Falhas, EntregaSemPastasSemMidiaOuQueFalha) {
  Montar();
  motor->TestarRegras();
  // Folders removed under the engine are made again.
  fs::remove_all(estacao.Caminho("list"));
  fs::remove_all(estacao.Caminho("temp"));
  EXPECT_EQ(motor->TestarRegras().selecoes.size(), 2u);
  EXPECT_TRUE(Cheia());

  // Every file in list/ and temp/, partial ones included.
  auto Entregues = [&] { return std::pair(estacao.Nomes("list"), estacao.Nomes("temp")); };
  const size_t bytesMidia = estacao.Ler("mre/0000007.mre").size();
  for (const uint64_t espaco : {uint64_t{2}, uint64_t{bytesMidia + 1}, uint64_t{0}}) {
    Tocar();
    const auto antes = Entregues();
    const int16_t tocadas = motor->E().historico().TotalTocadas;
    if (espaco) arquivos.EncherDiscoApos(espaco);
    if (!espaco) arquivos.NegarRenomear(estacao.Caminho("list"));
    motor->E().execucao.MusicaForcada = 7;
    const ResultadoExecucao r = motor->TestarRegras();
    ASSERT_EQ(r.selecoes.size(), 1u) << espaco;
    EXPECT_TRUE(r.selecoes[0].erroEntrega.has_value()) << espaco;
    EXPECT_FALSE(r.selecoes[0].mrt || r.selecoes[0].lre) << espaco;
    EXPECT_EQ(Entregues(), antes) << espaco;
    EXPECT_EQ(motor->E().historico().TotalTocadas, tocadas) << espaco;
    arquivos.LiberarDisco();
    arquivos.Permitir();
    motor->TestarRegras();
    EXPECT_TRUE(Cheia()) << espaco;
  }

  // Gone before the run, or seen by it and gone before it is read: queued without media, no error.
  fs::remove(estacao.Caminho("mre/0000007.mre"));
  for (const int32_t codigo : {7, 8}) {
    Tocar();
    if (codigo == 8) arquivos.SumirDepoisDeVisto(estacao.Caminho("mre/0000008.mre"));
    motor->E().execucao.MusicaForcada = codigo;
    const ResultadoExecucao r = motor->TestarRegras();
    EXPECT_EQ(r.selecoes.at(0).escolhida, codigo);
    EXPECT_TRUE(!r.selecoes[0].mrt && r.selecoes[0].lre && !r.selecoes[0].erroEntrega) << codigo;
  }
  ConferirPreservados({"mre/0000007.mre", "mre/0000008.mre"});
}

// The faults of the log database, each applied to a good one. A Jet file beside it, even a
// broken one, is read instead.
enum class DefeitoBanco { Ausente, Lixo, Bloqueado, JetQuebrado };

class FalhasBanco : public Falhas, public ::testing::WithParamInterface<DefeitoBanco> {};

TEST_P(FalhasBanco, HistoricoFicaComoEstavaEAEscolhaSegue) {
  std::vector<RegistroLog> tocadas;
  for (int i = 0; i < 400; ++i) tocadas.push_back({1 + i % 60, SomarSegundos(ambiente.Agora(), -300 * (400 - i)), 0});
  BancoLogs(estacao.Caminho("lumavox.db")).Registrar(tocadas);
  Montar();
  const Historico& h = motor->E().historico();
  ASSERT_EQ(h.HistoricoCodigos[-1], 1 + 399 % 60);
  const std::string bom = estacao.Ler("lumavox.db");

  sqlite3* escritor = nullptr;
  switch (GetParam()) {
    case DefeitoBanco::Ausente: fs::remove(estacao.Caminho("lumavox.db")); break;
    case DefeitoBanco::Lixo: estacao.GravarTexto("lumavox.db", std::string(bom.size(), 'x')); break;
    case DefeitoBanco::Bloqueado:
      // A database kept in the older rollback mode can still be locked by its writer.
      ASSERT_EQ(sqlite3_open(estacao.Caminho("lumavox.db").c_str(), &escritor), SQLITE_OK);
      ASSERT_EQ(sqlite3_exec(escritor, "PRAGMA journal_mode=DELETE; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr),
                SQLITE_OK);
      break;
    case DefeitoBanco::JetQuebrado: estacao.GravarTexto("lumavox.mdb", "not a Jet file"); break;
  }
  const std::string antes = estacao.Existe("lumavox.db") ? estacao.Ler("lumavox.db") : "";
  const auto inicio = std::chrono::steady_clock::now();
  motor->CarregarMusicasTocadas();
  EXPECT_LT(std::chrono::steady_clock::now() - inicio, std::chrono::seconds(3));
  EXPECT_EQ(h.HistoricoCodigos[-1], 1 + 399 % 60);
  EXPECT_EQ(estacao.Existe("lumavox.db"), GetParam() != DefeitoBanco::Ausente);  // none is created
  EXPECT_EQ(motor->TestarRegras().selecoes.size(), 2u);
  TocarAteRecarregar();
  EXPECT_EQ(Fila().size(), 2u);
  EXPECT_EQ(estacao.Existe("lumavox.db") ? estacao.Ler("lumavox.db") : "", antes);
  sqlite3_close(escritor);
  ConferirPreservados({"lumavox.db"});
}

INSTANTIATE_TEST_SUITE_P(Defeitos, FalhasBanco,
                         ::testing::Values(DefeitoBanco::Ausente, DefeitoBanco::Lixo,
                                           DefeitoBanco::Bloqueado, DefeitoBanco::JetQuebrado));

// The rule entries of the latest selection, by rule number.
std::vector<Texto> RegrasDaUltima(const Motor& m) {
  std::vector<Texto> ids;
  for (const NoLog& no : m.E().log.Selecoes().back().filhos)
    if (!no.id.empty()) ids.push_back(no.id);
  return ids;
}

TEST_F(Falhas, ArquivoDeRegrasTrocadoDuranteAExecucao) {
  Montar();
  motor->TestarRegras();
  EXPECT_EQ(RegrasDaUltima(*motor), std::vector<Texto>{u"01"});

  // Garbage halfway through the file: the load stops there, the rules stay, choices go on.
  const std::string bom = estacao.Ler("lxie0.rdb");
  estacao.GravarTexto("lxie0.rdb", bom.substr(0, bom.find('\n') + 1) + "0999999\n");
  TocarAteRecarregar();
  EXPECT_EQ(Fila().size(), 2u);
  EXPECT_EQ(RegrasDaUltima(*motor), std::vector<Texto>{u"01"});
  ASSERT_TRUE(motor->UltimoErro().has_value());

  estacao.Regra(0, true, "15").Regra(0, true, "99");
  estacao.GravarRegras();
  TocarAteRecarregar();
  EXPECT_EQ(RegrasDaUltima(*motor), (std::vector<Texto>{u"15", u"99"}));
  ConferirPreservados({"lxie0.rdb", "lxie1.rdb", "lxie2.rdb"});
}

TEST_F(Falhas, RelogioVoltaUmaHoraEPassaDaMeiaNoite) {
  cli::GerarEstacaoDemo(estacao.Pasta(), {.musicas = 300, .bytesMre = 8});
  ambiente.DefinirAgora(MontarDataHora(2026, 11, 22, 23, 59, 30));
  Ligar();
  ASSERT_EQ(motor->TestarRegras().selecoes.size(), 2u);
  const fs::path noite = estacao.Pasta() / "madrugada";

  // Past midnight the night playlist; back an hour, to the day before; then forward again.
  for (const auto& [agora, deNoite] : {std::pair{MontarDataHora(2026, 11, 23, 0, 0, 30), true},
                                       {MontarDataHora(2026, 11, 22, 23, 40, 0), false}}) {
    ambiente.DefinirAgora(agora);
    Tocar();
    ASSERT_EQ(motor->TestarRegras().selecoes.size(), 1u) << FormatarIso(agora);
    EXPECT_EQ(motor->E().acervo().PastaDados == noite, deNoite) << FormatarIso(agora);
    for (const NoLog& no : motor->E().log.Selecoes().back().filhos)
      EXPECT_NE(no.tipo, TipoLog::Erro) << ParaUtf8(no.texto);
  }
  ConferirPreservados();
}

}  // namespace
}  // namespace lumavox
