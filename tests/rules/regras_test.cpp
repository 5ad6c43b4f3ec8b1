// Rules "01" to "07", "12", "13", "26" and "34" (the ones that look at the plays or the advance
// click) and the helpers they share, called directly on a hand-built state.
#include <gtest/gtest.h>

#include <array>

#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "engine/despacho.h"
#include "rules/candidatos.h"
#include "rules/regras.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;
using Codigos = std::vector<int32_t>;

constexpr int kArtista = 0, kGenero = 5, kNota = 8, kRitmo = 24;

DataHora Dia(int dia, int hora, int minuto = 0) { return MontarDataHora(2026, 11, dia, hora, minuto); }
int Percentual(AmbienteFixo& a) { return static_cast<int>(a.Aleatorio() * 100.0f + 1.0f); }

TEST(Regra01, SoAPrimeiraMusicaDaEstacaoPrecisaDoTag) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Pop;Rock"}});
  EXPECT_EQ(t.Aplicar(Regra01, "01", {"Genero:Rock"}), (Codigos{1, 3}));
  EXPECT_EQ(t.Aplicar(Regra01, "01", {"Genero:Rock", "21/11/2026"}).size(), 3u);  // another day
  t.Tocadas({2});
  EXPECT_EQ(t.Aplicar(Regra01, "01", {"Genero:Rock"}).size(), 3u);
}

TEST(Regra12, ContaOUltimoEOsQueDividemOValorSemSeremVizinhos) {
  EstadoTeste t;
  t.Musica(1, {{kArtista, "Ana"}}).Musica(2, {{kArtista, "Bia"}}).Musica(3, {{kArtista, "Caio"}})
      .Musica(4, {{kArtista, "Ana feat Caio"}});
  auto R12 = [&](std::vector<std::string> vars) { return t.Aplicar(Regra12, "12", std::move(vars)); };
  t.Tocadas({1, 1});
  EXPECT_EQ(R12({"2", "Artista:Geral*"}).size(), 4u);  // C = 1: position 0 is a filler, never counted
  t.Tocadas({3, 1, 2, 1});                             // ..., Caio, Ana, Bia, Ana
  EXPECT_EQ(R12({"3", "Artista:Geral*"}).size(), 4u);  // C = 2 < 3
  t.Tocadas({1});                                      // ..., Ana, Bia, Ana, Ana
  EXPECT_EQ(R12({"3", "Artista:Geral*"}), (Codigos{2, 3}));
  EXPECT_EQ(R12({"0", "Artista:Geral*"}), (Codigos{2, 3}));  // C = 1 is not below 0
  EXPECT_EQ(R12({"1", "Artista:Ana"}), (Codigos{2, 3}));
  EXPECT_EQ(R12({"1", "Artista:Bia"}).size(), 4u);     // the last song lacks the tag
  EXPECT_EQ(R12({"99", "Artista:Geral*"}).size(), 4u);  // history too short
  EXPECT_THROW(R12({"1", "Cor:Geral*"}), ErroExecucao);
}

TEST(Regra34, RejeitaOTagEnquantoEstiverEntreAsUltimasX1) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Jazz;Rock"}});
  auto R34 = [&](std::vector<std::string> vars) { return t.Aplicar(Regra34, "34", std::move(vars)); };
  t.Tocadas({1, 2, 2});
  EXPECT_EQ(R34({"3", "Genero:Rock"}), (Codigos{2}));
  EXPECT_EQ(R34({"2", "Genero:Rock"}).size(), 3u);
  EXPECT_EQ(R34({"1", "Genero:Pop"}), (Codigos{1, 3}));
  EXPECT_EQ(R34({"", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(R34({"0", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(R34({"3", "Genero:Geral*"}).size(), 3u);
  t.Tocadas({2});
  EXPECT_EQ(R34({"3", "Genero:Rock"}).size(), 3u);
  // Reaching below the history's first position is an error of the rule.
  EXPECT_THROW(R34({"4010", "Genero:Rock"}), ErroExecucao);
}

TEST(Regra02, NaoRepeteOValorDentroDasHorasESimSoRepete) {
  EstadoTeste t;  // now 22/11 10:00
  t.Musica(1, {{kArtista, "Ana"}}).Musica(2, {{kArtista, "Ana feat Bia"}}).Musica(3, {{kArtista, "Caio"}})
      .Musica(4, {{kArtista, "Bia"}});
  t.TocadaEm(4, Dia(22, 4)).TocadaEm(1, Dia(22, 8));
  auto R02 = [&](std::vector<std::string> vars, double horas = 0) {
    return t.Aplicar([horas](Estado& e) { Regra02(e, horas); }, "02", std::move(vars));
  };
  EXPECT_EQ(R02({"Não", "Artista:Geral*", "3"}), (Codigos{3, 4}));
  EXPECT_EQ(R02({"Não", "Artista:Geral*", "6"}), (Codigos{3}));  // 360 minutes still count
  EXPECT_EQ(R02({"Não", "Artista:Geral*", "1"}, 6), (Codigos{3}));
  EXPECT_EQ(R02({"sim", "Artista:Geral*", "3"}), (Codigos{3, 4}));
  EXPECT_EQ(R02({"Sim", "Artista:Geral*", "3"}), (Codigos{1, 2}));
  // A named value limits the rule to the songs and plays that carry it.
  EXPECT_EQ(R02({"Não", "Artista:Bia", "6"}), (Codigos{1, 3}));
  EXPECT_EQ(R02({"Sim", "Artista:Bia", "6"}), (Codigos{2, 4}));
  for (std::vector<std::string> nada : {std::vector<std::string>{"Sim", "Artista:Geral*", "1"},
                                        {"", "Artista:Geral*", "3"}, {"Não", "Artista:Geral*", "0"},
                                        {"Sim", "Cor:Geral*", "3"}, {"Não", "Artista:Geral*", "3", "21/11/2026"}})
    EXPECT_EQ(R02(nada).size(), 4u);
  EXPECT_EQ(R02({"Não", "Artista:Geral*", ""}, 3).size(), 4u);

  // Database plays count down to position -500; the table passes no hours of its own.
  t->SubstituirHistorico([](Historico& h) {
    h.HistoricoCodigos[-500] = 3;
    h.HistoricoDatas[-500] = Dia(22, 9);
    h.HistoricoCodigos[-501] = 4;
    h.HistoricoDatas[-501] = Dia(22, 9);
  });
  t.TodasCandidatas().Regra(0, 0, "02", {"Não", "Artista:Geral*", "3"});
  EXPECT_TRUE(AplicarRegra(t.E(), true, 0, 50));
  EXPECT_EQ(t.Candidatas(), (Codigos{4}));
}

TEST(Regra03, TrocaOuMantemNoCliqueOuDesdeEle) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock"}}).Musica(2, {{kGenero, "Pop"}}).Musica(3, {{kGenero, "Jazz"}});
  auto R03 = [&](int16_t clique, std::vector<std::string> vars) {
    t->selecao.CliqueAtual = clique;
    return t.Aplicar(Regra03, "03", std::move(vars));
  };
  EXPECT_EQ(R03(1, {"1", "Sim", "Genero:Geral*", "Não"}).size(), 3u);  // no last song yet
  t.Tocadas({1});
  EXPECT_EQ(R03(1, {"1", "Sim", "Genero:Geral*", "Não"}), (Codigos{2, 3}));
  EXPECT_EQ(R03(2, {"1", "Sim", "Genero:Geral*", "Não"}).size(), 3u);
  EXPECT_EQ(R03(3, {"1", "sim", "Genero:Geral*", "Sim"}), (Codigos{2, 3}));
  EXPECT_EQ(R03(0, {"0", "Sim", "Genero:Geral*", "Sim"}).size(), 3u);
  EXPECT_EQ(R03(1, {"1", "Não", "Genero:Geral*", "Não"}), (Codigos{1}));
  EXPECT_EQ(R03(1, {"1", "Não", "Genero:Pop", "Não"}), (Codigos{2}));
  EXPECT_EQ(R03(1, {"1", "Sim", "Genero:Pop", "Não"}), (Codigos{1, 3}));
}

TEST(Regra04, UmSorteioPorNotaDaDezAZeroEForaDaTabelaEncerraARegra) {
  // Chance of ratings 0..10 for X1 = 10, 5 and 0: ratings above X1 get 50.
  const std::pair<int, std::array<int, 11>> chances[] = {{10, {5, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100}},
                                                         {5, {50, 60, 70, 80, 90, 100, 50, 50, 50, 50, 50}},
                                                         {0, {100, 50, 50, 50, 50, 50, 50, 50, 50, 50, 50}}};
  for (const auto& [x1, chance] : chances)
    for (uint32_t semente = 1; semente <= 8; ++semente) {
      EstadoTeste t(Dia(22, 10), semente);
      for (int n = 0; n <= 10; ++n) t.Musica(100 + n, {{kNota, std::to_string(n)}});
      t.Musica(206, {{kNota, "6,5"}}).Musica(300);  // 6,5 rounds to 6; no rating counts as 0
      const Codigos mantidas = t.Aplicar(Regra04, "04", {std::to_string(x1)});
      AmbienteFixo gemeo(DataHora{}, semente);
      std::array<bool, 11> sim{};
      for (int j = 10; j >= 0; --j) sim[j] = Percentual(gemeo) <= chance[j];
      Codigos esperadas;
      for (int n = 0; n <= 10; ++n)
        if (sim[n]) esperadas.push_back(100 + n);
      if (sim[6]) esperadas.push_back(206);
      if (sim[0]) esperadas.push_back(300);
      EXPECT_EQ(mantidas, esperadas) << "X1 " << x1 << ", semente " << semente;
    }

  EstadoTeste t;
  AmbienteFixo gemeo(DataHora{}, 1);
  t.Musica(1, {{kNota, "10,5"}}).Musica(2, {{kNota, "3"}});
  t.Aplicar(Regra04, "04", {"10", "21/11/2026"});
  EXPECT_EQ(t.Amb().Aleatorio(), gemeo.Aleatorio());  // out of its period nothing is drawn
  EXPECT_THROW(t.Aplicar(Regra04, "04", {"11"}), ErroExecucao);
  t.Musica(3, {{kNota, "11"}});  // a rating past the table as well
  EXPECT_THROW(t.Aplicar(Regra04, "04", {"10"}), ErroExecucao);
}

TEST(Regra05, TocadasSaemENotasNoveEDezTemMeiaChance) {
  for (uint32_t semente = 1; semente <= 12; ++semente) {
    EstadoTeste t(Dia(22, 10), semente);
    t.Musica(1, {{kNota, "9"}}).Musica(2, {{kNota, "10"}}).Musica(3, {{kNota, "8,5"}}).Musica(4, {{kNota, "9"}})
        .Musica(5).Tocadas({1, 2, 3, 4});
    AmbienteFixo gemeo(DataHora{}, semente);
    Codigos esperadas;
    for (int32_t codigo : {1, 2, 4})  // slot order, and only the ratings exactly 9 and 10
      if (Percentual(gemeo) <= 50) esperadas.push_back(codigo);
    esperadas.push_back(5);
    EXPECT_EQ(t.Aplicar(Regra05, "05", {}), esperadas) << "semente " << semente;
  }

  EstadoTeste t;
  AmbienteFixo gemeo(DataHora{}, 1);
  t.Musica(1, {{kNota, "10"}}).Musica(2).Musica(3).Tocadas({1, 2, 3});
  EXPECT_TRUE(t.Aplicar(Regra05, "05", {}).empty());
  EXPECT_EQ(t.Amb().Aleatorio(), gemeo.Aleatorio());  // no survivor: no second chance
  EstadoTeste u;
  u.Musica(1).Musica(2).Musica(3);
  u->SubstituirHistorico([](Historico& h) {
    h.HistoricoCodigos[-500] = 1;
    h.HistoricoCodigos[-501] = 2;
  });
  EXPECT_EQ(u.Aplicar(Regra05, "05", {}), (Codigos{2, 3}));
  u.Tocadas({3});
  EXPECT_EQ(u.Aplicar(Regra05, "05", {}), (Codigos{2}));
}

TEST(Regra06, MesmaHoraEmDiasRecentesSemPassarDaMeiaNoite) {
  EstadoTeste t;
  t.Musica(1).Musica(2).Musica(3).Musica(4);
  t.TocadaEm(1, Dia(21, 6)).TocadaEm(2, Dia(21, 23)).TocadaEm(3, Dia(22, 6)).TocadaEm(4, Dia(19, 7));
  auto R06 = [&](DataHora agora, std::string dias) {
    t->selecao.DataHoraReferencia = agora;
    return t.Aplicar(Regra06, "06", {dias, "2"});
  };
  EXPECT_EQ(R06(Dia(22, 7, 30), "3"), (Codigos{2, 3}));
  EXPECT_EQ(R06(Dia(22, 7, 30), "2"), (Codigos{2, 3, 4}));
  EXPECT_EQ(R06(Dia(22, 8), "3"), (Codigos{2, 3}));
  EXPECT_EQ(R06(Dia(22, 8, 1), "3"), (Codigos{1, 2, 3}));
  EXPECT_EQ(R06(Dia(22, 0, 30), "3").size(), 4u);  // 21:00..25:00 does not wrap
  t.TocadaEm(0, Dia(22, 7));  // an empty newest entry stops every scan at once
  EXPECT_EQ(R06(Dia(22, 7, 30), "3").size(), 4u);
}

TEST(Regra07, ChancePelaCorridaEComparacoesDiferentesNosDoisRamos) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock"}}).Musica(2, {{kGenero, "Pop"}}).Musica(3, {{kGenero, "Pop;Rock"}})
      .Musica(4, {{kGenero, "Pop;Jazz"}});
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Rock", "100"}).size(), 4u);  // nothing played
  t.Tocadas({3, 3, 3, 3});  // position 0 never counts: a run of 3
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Geral*", "0", "0", "100", "0"}), (Codigos{1, 2, 3}));
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Geral*", "100", "100", "0", "100"}), (Codigos{4}));
  // The named value is compared without the "POP" exception, so Pop;Jazz shares Pop.
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Pop", "0", "0", "100", "0"}), (Codigos{2, 3, 4}));
  EXPECT_THROW(t.Aplicar(Regra07, "07", {"Cor:Geral*", "100"}), ErroExecucao);
  t.Tocadas({2, 2, 2, 1});
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Rock", "100", "0", "0", "0"}), (Codigos{1, 3}));
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Pop", "100"}).size(), 4u);  // the last is not Pop
  t.Tocadas({1, 1, 1});
  EXPECT_EQ(t.Aplicar(Regra07, "07", {"Genero:Rock", "0", "0", "0", "100"}), (Codigos{1, 3}));
}

TEST(Regra13, ContaDiasPosterioresADataDoComputador) {
  EstadoTeste t;  // the computer's clock says 22/11; the rules' reference is days later
  t->selecao.DataHoraReferencia = Dia(27, 10);
  t.Musica(1).Musica(2).Musica(3).Musica(4);
  t.TocadaEm(2, Dia(20, 9)).TocadaEm(2, Dia(21, 9)).TocadaEm(4, Dia(24, 9)).TocadaEm(3, Dia(23, 9))
      .TocadaEm(4, Dia(23, 9)).TocadaEm(3, Dia(22, 8));
  EXPECT_EQ(t.Aplicar(Regra13, "13", {"1"}), (Codigos{1, 2}));  // today's play of 3 is skipped
  EXPECT_EQ(t.Aplicar(Regra13, "13", {"2"}), (Codigos{1, 2, 3}));  // 4 steps 23/11, then 24/11
  EXPECT_EQ(t.Aplicar(Regra13, "13", {"3"}).size(), 4u);
  EXPECT_TRUE(t.Aplicar(Regra13, "13", {"0"}).empty());
  EXPECT_THROW(t.Aplicar(Regra13, "13", {"dois"}), ErroExecucao);

  // A play's day is its date text read back: year 26 reads as this century's today, so 23/11
  // then counts, and a three-digit year cannot be read at all.
  EstadoTeste u;
  u.Musica(5).Musica(6).TocadaEm(5, Dia(23, 9)).TocadaEm(5, MontarDataHora(26, 11, 22, 10, 0, 0));
  EXPECT_EQ(u.Aplicar(Regra13, "13", {"1"}), (Codigos{6}));
  u.TocadaEm(6, MontarDataHora(500, 1, 1, 0, 0, 0));
  EXPECT_THROW(u.Aplicar(Regra13, "13", {"1"}), ErroExecucao);
}

TEST(Regra26, VariacaoMaximaDoValorDeRitmoDaUltima) {
  EstadoTeste t;
  t.Musica(1, {{kRitmo, "Rápida;"}, {kNota, "Normal;"}}).Musica(2, {{kRitmo, "Rápida;Normal;"}})
      .Musica(3, {{kRitmo, "Normal;"}, {kNota, "5"}});
  EXPECT_EQ(t.Aplicar(Regra26, "26", {"1", "0"}).size(), 3u);  // nothing played
  t.Tocadas({1});
  EXPECT_EQ(t.Aplicar(Regra26, "26", {"1", "2"}), (Codigos{1, 2}));
  EXPECT_EQ(t.Aplicar(Regra26, "26", {"1", "0"}), (Codigos{1}));
  EXPECT_EQ(t.Aplicar(Regra26, "26", {"2", "0"}), (Codigos{1, 3}));  // "Normal;" as a Nota is 5
  EXPECT_EQ(t.Aplicar(Regra26, "26", {"1,5", "0"}).size(), 3u);
}

TEST(IndiceHistorico, HistoricoAlemDaUltimaPosicaoEncerraARegra) {
  EstadoTeste t;
  t.Musica(1).Musica(2);
  t->SubstituirHistorico([](Historico& h) { h.TotalTocadas = 4002; });
  EXPECT_THROW(t.Aplicar(Regra05, "05", {}), ErroExecucao);
  EXPECT_THROW(t.Aplicar(Regra06, "06", {"1", "1"}), ErroExecucao);
  EXPECT_THROW(t.Aplicar(Regra13, "13", {"1"}), ErroExecucao);
}

bool Vigente(EstadoTeste& t, int h, int m, int s, const char16_t* d, const char16_t* ini, const char16_t* fim) {
  t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, h, m, s);
  return VerificarVigencia(t.E(), d, ini, fim);
}

TEST(VerificarVigencia, DataEHorarioComBordasInclusivasSemVirarMeiaNoite) {
  EstadoTeste t;
  EXPECT_TRUE(Vigente(t, 3, 0, 0, u"", u"", u""));
  EXPECT_TRUE(Vigente(t, 23, 59, 59, u"22/11/2026", u"", u""));
  EXPECT_FALSE(Vigente(t, 10, 0, 0, u"21/11/2026", u"", u""));
  EXPECT_FALSE(Vigente(t, 10, 0, 0, u"22/11/2026 10:00", u"", u""));  // a date with a time never equals
  EXPECT_TRUE(Vigente(t, 3, 0, 0, u"", u"10:00", u""));              // one-sided ranges are ignored
  EXPECT_TRUE(Vigente(t, 3, 0, 0, u"", u"", u"10:00"));
  EXPECT_TRUE(Vigente(t, 10, 0, 0, u"", u"10:00", u"10:00"));
  EXPECT_FALSE(Vigente(t, 10, 0, 1, u"", u"10:00", u"10:00"));
  EXPECT_TRUE(Vigente(t, 12, 0, 0, u"", u"8:00", u"12:00:00"));
  EXPECT_FALSE(Vigente(t, 23, 0, 0, u"", u"22:00", u"02:00"));  // 22:00 > 02:00: never in force
  EXPECT_THROW(Vigente(t, 10, 0, 0, u"amanhã", u"", u""), ErroExecucao);
  EXPECT_THROW(Vigente(t, 10, 0, 0, u"", u"23:00", u"meio-dia"), ErroExecucao);  // both ends converted
}

TEST(MinutosDesdeTocada, DaTocadaAteAReferenciaDasRegras) {
  EstadoTeste t;  // the clock says 10:00; the rules' reference is a minute later
  t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, 10, 1, 0);
  t->SubstituirHistorico([](Historico& h) {
    h.HistoricoDatas[1] = MontarDataHora(2026, 11, 21, 22, 30, 0);
    h.HistoricoDatas[2] = MontarDataHora(2026, 11, 22, 11, 0, 0);
  });
  EXPECT_EQ(MinutosDesdeTocada(t.E(), 1), 11 * 60 + 31);
  EXPECT_EQ(MinutosDesdeTocada(t.E(), 2), -59);
}

}  // namespace
}  // namespace lumavox
