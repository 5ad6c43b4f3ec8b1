#include <gtest/gtest.h>

#include <tuple>

#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "engine/despacho.h"
#include "engine/registro.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;

std::string Ajustar(EstadoTeste& t, int nivel, const std::string& valor) {
  t->selecao.NivelRitmo = static_cast<int16_t>(nivel);
  return ParaUtf8(AjustarValorVariavel(t.E(), DeUtf8(valor)));
}

TEST(AjustarValorVariavel, DeslizaComONivelNasDuasPontasEEscolheOConjunto) {
  EstadoTeste t;
  const std::tuple<int, const char*, const char*> casos[] = {
      {83, "*10", "10"},  {0, "*0-35", "35"}, {34, "*0-35", "1"},   {36, "*0-35", "0"},
      {64, "*0-35", "0"}, {65, "*0-35", "0"}, {100, "*0-35", "35"}, {17, "*8-2", "5"},
      {0, "*-5", "5"},     // an empty left part is 0
      {0, "*3-5-7", "7"},  // the last "-" wins; "3-5" is not a number
      {50, "*2,5-8", "2"}, {0, "Genero:Rock", "Genero:Rock"}};  // 2,5 halves to even: 2
  for (const auto& [nivel, valor, esperado] : casos)
    EXPECT_EQ(Ajustar(t, nivel, valor), esperado) << nivel << " " << valor;
  EXPECT_THROW(Ajustar(t, 0, "*-30000-30000"), ErroExecucao);
  // The same band edges choose the rule set.
  for (auto [nivel, conjunto] : {std::pair{35, 1}, {36, 0}, {64, 0}, {65, 2}})
    EXPECT_EQ(ConjuntoDoNivel(nivel), conjunto) << nivel;
}

class AplicarRegraTeste : public ::testing::Test {
 protected:
  void SetUp() override {
    t.Musica(1, {{5, "Rock;"}}).Musica(2, {{5, "Pop;"}}).Musica(3, {{5, "Rock;Pop;"}}).TodasCandidatas();
    t->selecao.MusicasEscolhidas = 4;
    t->selecao.RegraNumero = 3;
  }
  const NoLog& UltimaEntrada() { return t->log.Atual()->filhos.back(); }
  EstadoTeste t;
};

TEST_F(AplicarRegraTeste, AceitaRemoveELogaAntesDeRemover) {
  t.Regra(0, 0, "01", {"Genero:Rock"}, "Começar com (X1) [(X2)DATA]");
  EXPECT_TRUE(AplicarRegra(t.E(), true, 0, 50));
  EXPECT_EQ(t.Candidatas(), (std::vector<int32_t>{1, 3}));
  EXPECT_EQ(t->selecao.MusicasExcluidas, 1);
  const NoLog& no = UltimaEntrada();
  EXPECT_EQ(no.tipo, TipoLog::Aplicada);
  EXPECT_EQ(no.chave, "R4_3");
  EXPECT_EQ(ParaUtf8(no.texto), "3 -> REGRA: 01 -  (50,1,3) - Começar com (Genero:Rock) [(X2)DATA]");
  ASSERT_EQ(no.musicas.size(), 1u);
  EXPECT_EQ(ChaveMusica(no, no.musicas[0]), "n4_3_1");

  // A rule that removes nothing logs no children.
  t.Regra(0, 2, "35", {});
  EXPECT_TRUE(AplicarRegra(t.E(), true, 2, 50));
  EXPECT_EQ(UltimaEntrada().tipo, TipoLog::Aplicada);
  EXPECT_TRUE(UltimaEntrada().musicas.empty());
}

// Rules that keep every candidate: a number without a procedure is skipped, a rule that would
// leave no song or finds no candidate is refused, and one that raises ends alone.
TEST_F(AplicarRegraTeste, NaoRealizadaNegadaOuComErroNaoRemoveNada) {
  auto Aplicar = [&](long indice, int nivel, bool retorno, TipoLog tipo, const std::string& trecho) {
    EXPECT_EQ(AplicarRegra(t.E(), true, indice, static_cast<int16_t>(nivel)), retorno) << trecho;
    EXPECT_EQ(UltimaEntrada().tipo, tipo) << trecho;
    EXPECT_NE((ParaUtf8(UltimaEntrada().texto) + UltimaEntrada().erro).find(trecho), std::string::npos) << trecho;
  };
  t.Regra(2, 0, "15", {});
  Aplicar(0, 65, true, TipoLog::NaoRealizada, "REGRA SCRIPT NÃO REALIZADO: 15");
  t.Regra(1, 0, "01", {"Cor:Azul"});
  Aplicar(0, 35, false, TipoLog::Negada, "REGRA NEGADA: 01");  // level 35 reads set 1
  t.Regra(0, 0, "01", {"Genero:Rock", "não é data"});
  Aplicar(0, 50, false, TipoLog::Erro, "Erro 13");
  EXPECT_EQ(t.Candidatas().size(), 3u);

  for (long i = 0; i < 3; ++i) t->selecao.MusicaCandidata[i] = false;
  t.Regra(2, 1, "99", {});
  Aplicar(1, 65, false, TipoLog::Negada, "");
  // The never-loaded script list applies an empty rule.
  EXPECT_FALSE(AplicarRegra(t.E(), false, 0, 65));
  EXPECT_TRUE(t->catalogo.RegraAtual.ID.empty());
}

// A selection that never chose reuses its counter: its subtree is replaced, not doubled.
TEST(RegistrarLog, SelecaoSemEscolhaTrocaASubarvore) {
  EstadoTeste t;
  t.Musica(10).Musica(20).TodasCandidatas();
  t->selecao.MusicasEscolhidas = 7;
  RegistrarLog(t.E(), TipoLog::Inicio);
  RegistrarLog(t.E(), TipoLog::Restantes);
  EXPECT_EQ(t->log.Atual()->chave, "P7");
  RegistrarLog(t.E(), TipoLog::Inicio);
  EXPECT_EQ(t->log.Selecoes().size(), 1u);
  EXPECT_TRUE(t->log.Atual()->filhos.empty());
}

}  // namespace
}  // namespace lumavox
