// Rules "01" to "07", "12", "13", "26" and "34" (the ones that look at the plays or the advance
// click) and the helpers they share, called directly on a hand-built state.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <initializer_list>
#include <tuple>
#include <utility>

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
void MusicasCom(EstadoTeste& t, int campo, std::initializer_list<std::pair<int32_t, const char*>> musicas) {
  for (const auto& [codigo, valor] : musicas) t.Musica(codigo, {{campo, valor}});
}
// Runs `regra` with each case's variables and checks the codes it keeps.
void Conferir(EstadoTeste& t, const std::function<void(Estado&)>& regra, const char* id,
              std::initializer_list<std::pair<std::vector<std::string>, Codigos>> casos) {
  for (const auto& [vars, mantidas] : casos)
    EXPECT_EQ(t.Aplicar(regra, id, vars), mantidas) << id << " " << ::testing::PrintToString(vars);
}

TEST(Regra01e34, SoAPrimeiraMusicaPrecisaDoTagEOTagEsperaSairDasUltimasX1) {
  EstadoTeste t;
  MusicasCom(t, kGenero, {{1, "Rock;"}, {2, "Pop;"}, {3, "Jazz;Rock"}});
  Conferir(t, Regra01, "01", {{{"Genero:Rock"}, {1, 3}}, {{"Genero:Rock", "21/11/2026"}, {1, 2, 3}}});  // another day
  t.Tocadas({1, 2, 2});
  Conferir(t, Regra01, "01", {{{"Genero:Rock"}, {1, 2, 3}}});
  Conferir(t, Regra34, "34", {{{"3", "Genero:Rock"}, {2}},           {{"2", "Genero:Rock"}, {1, 2, 3}},
                              {{"1", "Genero:Pop"}, {1, 3}},         {{"0", "Genero:Pop"}, {1, 2, 3}},
                              {{"3", "Genero:Geral*"}, {1, 2, 3}}});
  t.Tocadas({2});
  Conferir(t, Regra34, "34", {{{"3", "Genero:Rock"}, {1, 2, 3}}});
  // Reaching below the history's first position is an error of the rule.
  EXPECT_THROW(t.Aplicar(Regra34, "34", {"4010", "Genero:Rock"}), ErroExecucao);
}

TEST(Regra12, ContaOUltimoEOsQueDividemOValorSemSeremVizinhos) {
  EstadoTeste t;
  MusicasCom(t, kArtista, {{1, "Ana"}, {2, "Bia"}, {3, "Caio"}, {4, "Ana feat Caio"}});
  const Codigos todas{1, 2, 3, 4};
  t.Tocadas({1, 1});
  // C = 1: position 0 is a filler, never counted.
  Conferir(t, Regra12, "12", {{{"2", "Artista:Geral*"}, todas}});
  t.Tocadas({3, 1, 2, 1});  // ..., Caio, Ana, Bia, Ana
  Conferir(t, Regra12, "12", {{{"3", "Artista:Geral*"}, todas}});  // C = 2 < 3
  t.Tocadas({1});                                                     // ..., Ana, Bia, Ana, Ana
  Conferir(t, Regra12, "12", {{{"3", "Artista:Geral*"}, {2, 3}}, {{"0", "Artista:Geral*"}, {2, 3}},  // C = 1 is not below 0
                              {{"1", "Artista:Ana"}, {2, 3}},
                              {{"1", "Artista:Bia"}, todas},  // the last song lacks the tag
                              {{"99", "Artista:Geral*"}, todas}});  // history too short
}

TEST(Regra02, NaoRepeteOValorDentroDasHorasESimSoRepete) {
  EstadoTeste t;  // now 22/11 10:00
  MusicasCom(t, kArtista, {{1, "Ana"}, {2, "Ana feat Bia"}, {3, "Caio"}, {4, "Bia"}});
  t.TocadaEm(4, Dia(22, 4)).TocadaEm(1, Dia(22, 8));
  const Codigos todas{1, 2, 3, 4};
  Conferir(t, [](Estado& e) { Regra02(e, 0); }, "02", {
      {{"Não", "Artista:Geral*", "3"}, {3, 4}}, {{"Não", "Artista:Geral*", "6"}, {3}},  // 360 minutes count
      {{"sim", "Artista:Geral*", "3"}, {3, 4}}, {{"Sim", "Artista:Geral*", "3"}, {1, 2}},
      // A named value limits the rule to the songs and plays that carry it.
      {{"Não", "Artista:Bia", "6"}, {1, 3}},    {{"Sim", "Artista:Bia", "6"}, {2, 4}},
      {{"Sim", "Artista:Geral*", "1"}, todas},  {{"Não", "Artista:Geral*", "0"}, todas},
      {{"Não", "Artista:Geral*", "3", "21/11/2026"}, todas}});
  // Hours given by the caller replace Var3.
  Conferir(t, [](Estado& e) { Regra02(e, 6); }, "02", {{{"Não", "Artista:Geral*", "1"}, {3}}});
  Conferir(t, [](Estado& e) { Regra02(e, 3); }, "02", {{{"Não", "Artista:Geral*", ""}, todas}});

  // Database plays count down to position -500; the table passes no hours of its own.
  t->SubstituirHistorico([](Historico& h) {
    for (auto [p, codigo] : {std::pair{-500, 3}, std::pair{-501, 4}})
      h.HistoricoCodigos[p] = codigo, h.HistoricoDatas[p] = Dia(22, 9);
  });
  t.TodasCandidatas().Regra(0, 0, "02", {"Não", "Artista:Geral*", "3"});
  EXPECT_TRUE(AplicarRegra(t.E(), true, 0, 50));
  EXPECT_EQ(t.Candidatas(), (Codigos{4}));
}

TEST(Regra03, TrocaOuMantemNoCliqueOuDesdeEle) {
  EstadoTeste t;
  MusicasCom(t, kGenero, {{1, "Rock"}, {2, "Pop"}, {3, "Jazz"}});
  const std::tuple<int16_t, std::vector<std::string>, Codigos> casos[] = {
      {1, {"1", "Sim", "Genero:Geral*", "Não"}, {2, 3}},    {2, {"1", "Sim", "Genero:Geral*", "Não"}, {1, 2, 3}},
      {3, {"1", "sim", "Genero:Geral*", "Sim"}, {2, 3}},    {0, {"0", "Sim", "Genero:Geral*", "Sim"}, {1, 2, 3}},
      {1, {"1", "Não", "Genero:Geral*", "Não"}, {1}},       {1, {"1", "Não", "Genero:Pop", "Não"}, {2}},
      {1, {"1", "Sim", "Genero:Pop", "Não"}, {1, 3}}};
  t.Tocadas({1});
  for (const auto& [clique, vars, mantidas] : casos) {
    t->selecao.CliqueAtual = clique;
    EXPECT_EQ(t.Aplicar(Regra03, "03", vars), mantidas) << clique << " " << ::testing::PrintToString(vars);
  }
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
      const Codigos mantidas = t.Aplicar(Regra04, "04", {std::to_string(x1)});
      AmbienteFixo gemeo(DataHora{}, semente);
      std::array<bool, 11> sim{};
      for (int j = 10; j >= 0; --j) sim[j] = Percentual(gemeo) <= chance[j];
      Codigos esperadas;
      for (int n = 0; n <= 10; ++n)
        if (sim[n]) esperadas.push_back(100 + n);
      EXPECT_EQ(mantidas, esperadas) << "X1 " << x1 << ", semente " << semente;
    }

  EstadoTeste t;
  t.Musica(1, {{kNota, "10,5"}}).Musica(2, {{kNota, "3"}});
  EXPECT_THROW(t.Aplicar(Regra04, "04", {"11"}), ErroExecucao);
  t.Musica(3, {{kNota, "11"}});  // a rating past the table as well
  EXPECT_THROW(t.Aplicar(Regra04, "04", {"10"}), ErroExecucao);
}

TEST(Regra05, TocadasSaemENotasNoveEDezTemMeiaChance) {
  for (uint32_t semente = 1; semente <= 12; ++semente) {
    EstadoTeste t(Dia(22, 10), semente);
    MusicasCom(t, kNota, {{1, "9"}, {2, "10"}, {3, "8,5"}, {4, "9"}});
    t.Musica(5).Tocadas({1, 2, 3, 4});
    AmbienteFixo gemeo(DataHora{}, semente);
    Codigos esperadas;
    for (int32_t codigo : {1, 2, 4})  // slot order, and only the ratings exactly 9 and 10
      if (Percentual(gemeo) <= 50) esperadas.push_back(codigo);
    esperadas.push_back(5);
    EXPECT_EQ(t.Aplicar(Regra05, "05", {}), esperadas) << "semente " << semente;
  }

  EstadoTeste t;
  AmbienteFixo gemeo(DataHora{}, 1);
  t.Musica(1).Musica(2).Musica(3, {{kNota, "10"}});
  t->SubstituirHistorico([](Historico& h) {  // database plays count down to position -500 only
    h.HistoricoCodigos[-500] = 1;
    h.HistoricoCodigos[-501] = 2;
  });
  EXPECT_EQ(t.Aplicar(Regra05, "05", {}), (Codigos{2, 3}));
  t.Tocadas({2, 3});
  EXPECT_TRUE(t.Aplicar(Regra05, "05", {}).empty());
  EXPECT_EQ(t.Amb().Aleatorio(), gemeo.Aleatorio());  // no survivor: no second chance
  t->SubstituirHistorico([](Historico& h) { h.TotalTocadas = 4002; });  // past the last position
  EXPECT_THROW(t.Aplicar(Regra05, "05", {}), ErroExecucao);
}

TEST(Regra06, MesmaHoraEmDiasRecentesSemPassarDaMeiaNoite) {
  EstadoTeste t;
  t.Musica(1).Musica(2).Musica(3).Musica(4);
  t.TocadaEm(1, Dia(21, 6)).TocadaEm(2, Dia(21, 23)).TocadaEm(3, Dia(22, 6)).TocadaEm(4, Dia(19, 7));
  const std::tuple<int, int, const char*, Codigos> casos[] = {{7, 30, "3", {2, 3}}, {7, 30, "2", {2, 3, 4}},
      {8, 0, "3", {2, 3}}, {8, 1, "3", {1, 2, 3}}, {0, 30, "3", {1, 2, 3, 4}}};  // 21:00..25:00 does not wrap
  for (bool vazia : {false, true}) {
    if (vazia) t.TocadaEm(0, Dia(22, 7));  // an empty newest entry stops every scan at once
    for (const auto& [hora, minuto, dias, mantidas] : casos) {
      t->selecao.DataHoraReferencia = Dia(22, hora, minuto);
      EXPECT_EQ(t.Aplicar(Regra06, "06", {dias, "2"}), vazia ? (Codigos{1, 2, 3, 4}) : mantidas) << hora << ":" << minuto;
    }
  }
}

TEST(Regra07, ChancePelaCorridaEComparacoesDiferentesNosDoisRamos) {
  EstadoTeste t;
  MusicasCom(t, kGenero, {{1, "Rock"}, {2, "Pop"}, {3, "Pop;Rock"}, {4, "Pop;Jazz"}});
  t.Tocadas({3, 3, 3, 3});  // position 0 never counts: a run of 3
  // The named value is compared without the "POP" exception, so Pop;Jazz shares Pop.
  Conferir(t, Regra07, "07", {{{"Genero:Geral*", "0", "0", "100", "0"}, {1, 2, 3}},
                              {{"Genero:Geral*", "100", "100", "0", "100"}, {4}},
                              {{"Genero:Pop", "0", "0", "100", "0"}, {2, 3, 4}}});
  EXPECT_THROW(t.Aplicar(Regra07, "07", {"Cor:Geral*", "100"}), ErroExecucao);
  t.Tocadas({2, 2, 2, 1});
  Conferir(t, Regra07, "07", {{{"Genero:Rock", "100", "0", "0", "0"}, {1, 3}},
                              {{"Genero:Pop", "100"}, {1, 2, 3, 4}}});  // the last is not Pop
  t.Tocadas({1, 1, 1});
  Conferir(t, Regra07, "07", {{{"Genero:Rock", "0", "0", "0", "100"}, {1, 3}}});
}

TEST(Regra13, ContaDiasPosterioresADataDoComputador) {
  EstadoTeste t;  // the computer's clock says 22/11; the rules' reference is days later
  t->selecao.DataHoraReferencia = Dia(27, 10);
  t.Musica(1).Musica(2).Musica(3).Musica(4);
  t.TocadaEm(2, Dia(20, 9)).TocadaEm(2, Dia(21, 9)).TocadaEm(4, Dia(24, 9)).TocadaEm(3, Dia(23, 9));
  t.TocadaEm(4, Dia(23, 9)).TocadaEm(3, Dia(22, 8));
  // With X1 = 1 today's play of 3 is skipped; with 2, song 4 steps 23/11, then 24/11.
  Conferir(t, Regra13, "13", {{{"1"}, {1, 2}}, {{"2"}, {1, 2, 3}}, {{"3"}, {1, 2, 3, 4}}, {{"0"}, {}}});
}

TEST(Regra26, VariacaoMaximaDoValorDeRitmoDaUltima) {
  EstadoTeste t;
  t.Musica(1, {{kRitmo, "Rápida;"}, {kNota, "Normal;"}}).Musica(2, {{kRitmo, "Rápida;Normal;"}});
  t.Musica(3, {{kRitmo, "Normal;"}, {kNota, "5"}});
  t.Tocadas({1});
  // "Normal;" as a Nota is 5.
  Conferir(t, Regra26, "26", {{{"1", "2"}, {1, 2}}, {{"1", "0"}, {1}}, {{"2", "0"}, {1, 3}}, {{"1,5", "0"}, {1, 2, 3}}});
}

TEST(Candidatos, VigenciaComBordasInclusivasSemVirarMeiaNoiteEMinutosAteAReferencia) {
  EstadoTeste t;
  const std::tuple<int, int, int, const char16_t*, const char16_t*, const char16_t*, bool> casos[] = {
      {3, 0, 0, u"", u"", u"", true},     {23, 59, 59, u"22/11/2026", u"", u"", true},
      {10, 0, 0, u"21/11/2026", u"", u"", false}, {10, 0, 0, u"22/11/2026 10:00", u"", u"", false},  // with a time: never
      {3, 0, 0, u"", u"10:00", u"", true},  // one-sided: ignored
      {10, 0, 0, u"", u"10:00", u"10:00", true}, {10, 0, 1, u"", u"10:00", u"10:00", false},
      {12, 0, 0, u"", u"8:00", u"12:00:00", true}, {23, 0, 0, u"", u"22:00", u"02:00", false}};  // never
  for (const auto& [h, m, seg, d, ini, fim, vigente] : casos) {
    t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, h, m, seg);
    EXPECT_EQ(VerificarVigencia(t.E(), d, ini, fim), vigente) << h << ":" << m << ":" << seg << " " << ParaUtf8(d);
  }
  EXPECT_THROW(VerificarVigencia(t.E(), u"", u"23:00", u"meio-dia"), ErroExecucao);  // both ends converted

  // Minutes since a play count to the rules' reference, here a minute after the clock's 10:00.
  t->selecao.DataHoraReferencia = Dia(22, 10, 1);
  t.TocadaEm(1, Dia(21, 22, 30)).TocadaEm(1, Dia(22, 11));
  EXPECT_EQ(MinutosDesdeTocada(t.E(), 0), 11 * 60 + 31);
  EXPECT_EQ(MinutosDesdeTocada(t.E(), 1), -59);
}

}  // namespace
}  // namespace lumavox
