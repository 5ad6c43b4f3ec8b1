#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "base/numeros.h"
#include "engine/despacho.h"
#include "engine/motor.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

class ExecucaoTeste : public ::testing::Test {
 protected:
  // `musicas` songs with codes 1.., every third one a Rock song.
  void Montar(int musicas, const std::string& nivel = "50") {
    for (int c = 1; c <= musicas; ++c) estacao.Musica(c, {{"Genero", c % 3 == 0 ? "Rock;" : "Pop;"}, {"DuracaoSec", "180"}});
    estacao.GravarAcervo();
    estacao.GravarRegras();
    estacao.GravarTexto("ritmo.rer", nivel + "\r\n");
    motor = std::make_unique<Motor>(estacao.Pasta(), ambiente);
    motor->Iniciar();
  }
  std::vector<std::string> Fila() const { return estacao.Nomes("list", ".lre"); }
  EstacaoTeste estacao;
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0), 5};
  std::unique_ptr<Motor> motor;
};

TEST_F(ExecucaoTeste, PrimeiraChamadaLimpaEEncheAFilaComDuasEntregas) {
  // What an earlier run left, whole or cut short by a power cut, goes at start-up.
  const char* const velhos[] = {"list/velho.lre", "temp/velho.mrt", "list/x.lre.parcial",
                                "temp/x.mrt.parcial"};
  for (const char* velho : velhos) estacao.GravarTexto(velho, "1");
  const std::string binario("\x00\x01\xff\x80", 4);  // every Rock song's media
  for (int c = 3; c <= 60; c += 3) estacao.GravarTexto("mre/" + NomeArquivoMusica(c), binario);
  estacao.Regra(0, true, "01", "", {"Genero:Rock"}).Regra(0, false, "12").Regra(0, true, "34", "", {"1", "Genero:Rock"});
  Montar(60);

  const ResultadoExecucao r = motor->TestarRegras();
  ASSERT_EQ(r.selecoes.size(), 2u);
  for (const char* velho : velhos) EXPECT_FALSE(estacao.Existe(velho)) << velho;
  const SelecaoFeita& s1 = r.selecoes[0];
  EXPECT_EQ(s1.escolhida % 3, 0);  // rule 01 kept only Rock for the first song
  EXPECT_EQ(s1.lre, "list/000001_" + FormatarZeros(s1.escolhida, 7) + "_050.lre");
  EXPECT_EQ(s1.mrt, "temp/000001.mrt");
  EXPECT_EQ(estacao.Ler(*s1.mrt), std::string("\xff\xfe\x00\x7f", 4));  // each byte complemented
  EXPECT_EQ(estacao.Ler(*s1.lre).substr(0, std::to_string(s1.escolhida).size()), std::to_string(s1.escolhida));
  EXPECT_NE(r.selecoes[1].escolhida % 3, 0);  // rule 34 keeps Rock away right after a Rock song
  EXPECT_EQ(Fila().size(), 2u);
  EXPECT_EQ(motor->E().historico().TotalTocadas, 2);
  EXPECT_EQ(motor->E().historico().HistoricoCodigos[0], s1.escolhida);
  EXPECT_EQ(ambiente.EsperadoMs(), 1600);

  // Full queue, no change: nothing to do. The player takes one: one more song.
  EXPECT_TRUE(motor->TestarRegras().selecoes.empty());
  fs::remove(estacao.Caminho("list") / Fila().front());
  const ResultadoExecucao r2 = motor->TestarRegras();
  ASSERT_EQ(r2.selecoes.size(), 1u);
  EXPECT_EQ(r2.selecoes[0].lre->substr(0, 12), "list/000003_");

  // An advance voids the queue and its file goes; a new level replaces the older entries.
  const std::vector<std::string> antiga = Fila();
  estacao.GravarTexto("avancar.rer", "1\r\n");
  fs::remove(estacao.Caminho("list") / antiga[0]);
  motor->TestarRegras();
  EXPECT_FALSE(estacao.Existe("avancar.rer"));
  EXPECT_EQ(motor->E().execucao.ContagemAvancos, 1);
  EXPECT_EQ(std::ranges::count(Fila(), antiga[1]), 0);
  estacao.GravarTexto("ritmo.rer", "80\r\n");
  const ResultadoExecucao r3 = motor->TestarRegras();
  ASSERT_EQ(r3.selecoes.size(), 2u);
  EXPECT_EQ(r3.selecoes[0].conjunto, 2);
  // The replaced and voided entries' media went with them; the one being played stays.
  EXPECT_EQ(estacao.Nomes("temp", ".mrt").size(), 4u);
}

// Fifty songs wait a minute for more; a forced song is chosen once, and one not in the
// collection leaves the draw as it was.
TEST_F(ExecucaoTeste, CinquentaMusicasEsperamEMusicaForcadaSoValeSeEstiverNoAcervo) {
  Montar(50);
  EXPECT_TRUE(motor->TestarRegras().selecoes.empty());
  EXPECT_EQ(ambiente.EsperadoMs(), 60000);
  EXPECT_TRUE(Fila().empty());
  Montar(51);
  motor->E().execucao.MusicaForcada = 42;
  EXPECT_EQ(motor->TestarRegras().selecoes.at(0).escolhida, 42);
  EXPECT_EQ(motor->E().execucao.MusicaForcada, 0);

  AmbienteFixo mesmo{MontarDataHora(2026, 11, 22, 10, 0, 0), 9}, outro{MontarDataHora(2026, 11, 22, 10, 0, 0), 9};
  Motor a(estacao.Pasta(), mesmo), b(estacao.Pasta(), outro);
  (a.Iniciar(), b.Iniciar(), b.E().execucao.MusicaForcada = 9999);
  EXPECT_EQ(a.TestarRegras().selecoes[0].escolhida, b.TestarRegras().selecoes[0].escolhida);
  EXPECT_EQ(b.E().execucao.MusicaForcada, 0);
}

}  // namespace
}  // namespace lumavox
