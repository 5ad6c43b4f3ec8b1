#include "engine/motor.h"

#include <gtest/gtest.h>

#include <climits>

#include "apoio/estacao.h"
#include "apoio/sistema_arquivos_falho.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

struct HistoricoContado : OrigemHistorico {
  explicit HistoricoContado(int& n) : chamadas(n) {}
  void CarregarMusicasTocadas(Historico&, const Acervo&) override { ++chamadas; }
  int& chamadas;
};

class MotorCarga : public ::testing::Test {
 protected:
  MotorCarga() {
    motor.DefinirOrigemHistorico(std::make_unique<HistoricoContado>(historicos));
    estacao.Musica(1).Musica(2).Musica(3).GravarAcervo();
    estacao.Regra(0, true, "01").Regra(2, true, "04").Regra(2, false, "05").GravarRegras();
  }
  // The default playlist, as start-up leaves it without pl.rdb.
  static void DefinirAcervo(Motor& m, int16_t carregarLogs = 0) {
    m.AbrirPlaylists();
    m.E().playlists.PlaylistAtual = 0;
    m.DefinirAcervo(0, carregarLogs);
  }
  void DefinirAcervo(int16_t carregarLogs = 0) { DefinirAcervo(motor, carregarLogs); }
  void Verificar(int hora = 9) {
    ambiente.DefinirAgora(MontarDataHora(2026, 11, 22, hora, 0, 0));
    motor.VerificarPlaylist(0);
  }
  std::array<int16_t, 3> Regras() const { return motor.E().catalogo.QuantidadeRegras; }
  // The collection file and the media folder as last written an hour ago.
  void Envelhecer() {
    const auto antigo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(estacao.Caminho("lxdb.rdb"), antigo);
    fs::last_write_time(estacao.Caminho("mre"), antigo);
  }
  // lxdb.rdb with song 3's code turned into 1: the same size, other contents.
  std::string TerceiraViraPrimeira() {
    std::string bytes = estacao.Ler("lxdb.rdb");
    return bytes.replace(bytes.find(EstacaoTeste::Codificada("3")), EstacaoTeste::Codificada("3").size(),
                         EstacaoTeste::Codificada("1"));
  }

  EstacaoTeste estacao;
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 9, 0, 0)};
  Motor motor{estacao.Pasta(), ambiente};
  int historicos = 0;
};

// What an earlier load left in the schedule goes; a broken table is traced and the load goes on.
TEST_F(MotorCarga, CargaCompletaGravaNregCarregaRegrasEAgendaEParaNaEtapaQueFalha) {
  motor.E().agenda.TabelasNumero[0] = 7;
  motor.E().agenda.TabelasGrade(0, 300, 5) = u"Genero:Rock";
  estacao.GravarTexto("lxtb1.rdb", EstacaoTeste::Linhas({"7", "359", "Genero:Jazz"}));
  estacao.GravarTexto("lxtb2.rdb", EstacaoTeste::Linhas({"8", "x"}));
  estacao.GravarTexto("debug.red", "");
  motor.DetectarModoDebug();
  DefinirAcervo();
  EXPECT_EQ(motor.E().acervo().TotalMusicas, 3);
  EXPECT_EQ(estacao.Ler("nreg.rer"), "3\n");
  EXPECT_EQ(Regras(), (std::array<int16_t, 3>{1, 0, 2}));
  EXPECT_EQ(motor.E().agenda.TabelasNumero[0], 0);
  EXPECT_EQ(motor.E().agenda.TabelasNumero[1], 7);
  EXPECT_NE(estacao.Ler("debuglog.rer").find("lxtb2.rdb, linha 2"), std::string::npos);
  EXPECT_EQ(historicos, 1);
  DefinirAcervo(-1);
  EXPECT_EQ(historicos, 1);

  // A step that fails stops the load before the steps after it.
  std::filesystem::remove(estacao.Caminho("nreg.rer"));
  estacao.GravarTexto("lxdb.rdb", EstacaoTeste::Codificada("x") + "\n");
  estacao.Regra(0, true, "01").Regra(0, true, "02").GravarRegras();
  EXPECT_THROW(DefinirAcervo(), ErroExecucao);
  EXPECT_EQ(motor.E().acervo().TotalMusicas, 3);
  EXPECT_FALSE(estacao.Existe("nreg.rer"));
  EXPECT_EQ(Regras(), (std::array<int16_t, 3>{1, 0, 2}));
  EXPECT_EQ(historicos, 1);
}

// A single playlist reloads on every sixth check; a load that fails is tried again on every
// check, the countdown held at its bottom, until the files are mended.
TEST_F(MotorCarga, PlaylistUnicaRecarregaNaSextaVerificacaoEAposFalhaACadaUma) {
  motor.Iniciar();
  ASSERT_EQ(historicos, 1);
  for (int rodada = 2; rodada <= 3; ++rodada) {
    for (int i = 1; i <= 5; ++i) Verificar();
    EXPECT_EQ(historicos, rodada - 1);
    Verificar();
    EXPECT_EQ(historicos, rodada);
  }
  std::filesystem::remove(estacao.Caminho("lxdb.rdb"));
  motor.E().ContagemRecarga = INT16_MIN + 1;
  EXPECT_THROW(Verificar(), ErroExecucao);
  EXPECT_THROW(Verificar(), ErroExecucao);
  EXPECT_EQ(motor.E().ContagemRecarga, INT16_MIN);
  estacao.Musica(5).GravarAcervo();
  Verificar();
  EXPECT_EQ(motor.E().acervo().TotalMusicas, 1);
  EXPECT_EQ(motor.E().ContagemRecarga, 5);
}

// A reload of files that have not changed since the last load leaves the collection as it is,
// so nothing derived from it is rebuilt; any change to the collection file or to the set of
// media files is read again, even one that keeps the size and the write time.
// A change of playlist reloads at once and starts the countdown to the next reload again.
TEST_F(MotorCarga, TrocaDePlaylistRecarregaNaHoraEReiniciaAContagem) {
  estacao.Musica(10).GravarAcervo("manha");
  estacao.Musica(20).Musica(21).GravarAcervo("tarde");
  estacao.GravarRegras("manha");
  estacao.GravarRegras("tarde");
  estacao.GravarTexto("pl.rdb", "08:00:00 11:59:59 manha\n12:00:00 18:00:00 tarde\n");
  motor.Iniciar();
  Verificar(13);
  EXPECT_EQ(historicos, 2);
  EXPECT_EQ(motor.E().acervo().TotalMusicas, 2);
  for (int i = 1; i <= 6; ++i) Verificar(13);
  EXPECT_EQ(historicos, 3);
}

TEST_F(MotorCarga, RecargaDeArquivosInalteradosNaoRefazOAcervo) {
  Envelhecer();
  DefinirAcervo();
  const uint64_t carregado = motor.E().VersaoAcervo();
  DefinirAcervo();
  EXPECT_EQ(motor.E().VersaoAcervo(), carregado);
  EXPECT_EQ(historicos, 2);  // the history is read again all the same

  // Same size, same write time: only the change time tells.
  const std::string antes = estacao.Ler("lxdb.rdb");
  estacao.GravarTexto("lxdb.rdb", TerceiraViraPrimeira());
  Envelhecer();
  DefinirAcervo();
  EXPECT_NE(motor.E().VersaoAcervo(), carregado);
  EXPECT_EQ(motor.E().acervo().AcervoCodigos[2], 1);

  fs::remove(estacao.Caminho("mre/0000002.mre"));
  Envelhecer();
  DefinirAcervo();
  EXPECT_EQ(motor.E().acervo().TotalMusicas, 2);

  // A file written a moment ago cannot be told from its next version: it is always read.
  estacao.GravarTexto("lxdb.rdb", antes);
  DefinirAcervo();
  const uint64_t recente = motor.E().VersaoAcervo();
  DefinirAcervo();
  EXPECT_NE(motor.E().VersaoAcervo(), recente);
}

// A second engine on the station takes the first one's load from the folder of records without
// reading lxdb.rdb (here refused to it); once the file changes, the record no longer answers.
TEST_F(MotorCarga, CargaGuardadaServeOutroMotorAteAColecaoMudar) {
  const fs::path registros = estacao.Caminho("cache");
  Envelhecer();
  motor.DefinirPastaGravacoes(registros);
  DefinirAcervo();
  ASSERT_EQ(motor.E().acervo().TotalMusicas, 3);

  teste::SistemaArquivosFalho arquivos;
  arquivos.NegarLeitura(estacao.Caminho("lxdb.rdb"));
  AmbienteFixo outroAmbiente{MontarDataHora(2026, 11, 22, 9, 0, 0)};
  outroAmbiente.DefinirArquivos(arquivos);
  auto Outro = [&] {
    auto outro = std::make_unique<Motor>(estacao.Pasta(), outroAmbiente);
    outro->DefinirPastaGravacoes(registros);
    DefinirAcervo(*outro, 1);
    return std::make_unique<Acervo>(outro->E().acervo());
  };
  // Field by field the record is the collection loader's business; here it must only be used.
  EXPECT_EQ(Outro()->AcervoCodigos[2], 3);

  estacao.GravarTexto("lxdb.rdb", TerceiraViraPrimeira());
  Envelhecer();
  EXPECT_THROW(Outro(), ErroExecucao);  // not the stale record: the file, which it may not read
  arquivos.Permitir();
  EXPECT_EQ(Outro()->AcervoCodigos[2], 1);
}

}  // namespace
}  // namespace lumavox
