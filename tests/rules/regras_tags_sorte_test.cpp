// Rules "08", "22" to "25" and "27" to "33", called directly on a hand-built state. Chance
// rules draw from a source that returns one fixed value and counts the draws: a chance of 0 is
// tried against the lowest draw (1) and a chance of 100 against the highest (100).
#include <gtest/gtest.h>

#include <initializer_list>
#include <tuple>
#include <utility>

#include "apoio/estacao.h"
#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "rules/regras.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;
using Codigos = std::vector<int32_t>;

constexpr int kGenero = 5, kNota = 8, kVelocidade = 18, kRitmo = 24, kGeneroSub = 27, kEstilo = 28;

struct SorteioFixo : AmbienteFixo {
  SorteioFixo() : AmbienteFixo(DataHora{}) {}
  float Aleatorio() override {
    ++sorteios;
    return valor;
  }
  float valor = 0;
  int sorteios = 0;
};
constexpr float kSorteio1 = 0.0f, kSorteio100 = 0.99999994f;

// A state whose rules draw from `sorteio`.
struct Teste {
  explicit Teste(DataHora agora = MontarDataHora(2026, 11, 22, 10, 0, 0)) : t(agora) { t->ambiente = &sorteio; }
  // Songs whose speed and rhythm both read `vibe`.
  void Vibes(std::initializer_list<std::pair<int32_t, const char*>> musicas) {
    for (const auto& [codigo, vibe] : musicas) t.Musica(codigo, {{kVelocidade, vibe}, {kRitmo, vibe}});
  }
  void Generos(std::initializer_list<std::pair<int32_t, const char*>> musicas) {
    for (const auto& [codigo, genero] : musicas) t.Musica(codigo, {{kGenero, genero}});
  }
  // Runs `regra` once per case, each with its own draw value, and checks the codes it keeps.
  void Conferir(void (*regra)(Estado&), const char* id,
                std::initializer_list<std::tuple<float, std::vector<std::string>, Codigos>> casos) {
    for (const auto& [valor, vars, mantidas] : casos) {
      sorteio.valor = valor;
      EXPECT_EQ(t.Aplicar(regra, id, vars), mantidas) << id << " " << valor << " " << ::testing::PrintToString(vars);
    }
  }
  EstadoTeste t;
  SorteioFixo sorteio;
};

TEST(Regra08, FaixaDeNotaInclusivaEDoisTagsSoNasHoras) {
  Teste x;
  for (auto [codigo, nota] : {std::pair{1, "10"}, std::pair{2, "8,5"}, std::pair{3, "7,9"}})
    x.t.Musica(codigo, {{kNota, nota}, {kGenero, "Rock"}, {kEstilo, "Dance"}});
  x.t.Musica(4, {{kNota, "9"}, {kGenero, "Rock"}}).Musica(5, {{kNota, "9"}, {kEstilo, "Dance"}});
  x.t.Musica(6, {{kGenero, "Rock"}, {kEstilo, "Dance"}});
  const char *r = "Genero:Rock", *d = "Estilo:Dance";
  // An empty Nota is 0, a band given low first keeps nothing, and outside X5..X6 nothing goes.
  x.Conferir(Regra08, "08", {{0, {"10", "8", r, d, "09:00", "10:00", "noite"}, {1, 2}},
      {0, {"10", "0", r, d, "09:00", "10:00", "noite"}, {1, 2, 3, 6}},
      {0, {"8", "10", r, d, "09:00", "10:00", "noite"}, {}},
      {0, {"10", "8", r, d, "10:00:01", "12:00", "noite"}, {1, 2, 3, 4, 5, 6}}});
}

TEST(Regra22, DepoisDoTagUmSorteioEscolheX3OuX4) {
  Teste x;
  x.Generos({{1, "Animado"}, {2, "Normal"}, {3, "Acelerado"}});
  const std::vector<std::string> vars{"Genero:Animado", "100", "Genero:Normal", "Genero:Acelerado"};
  x.t.Tocadas({2});
  x.Conferir(Regra22, "22", {{kSorteio100, vars, {1, 2, 3}}});  // the last song lacks X1: no draw
  x.t.Tocadas({1});
  // An empty X3 makes the draw change nothing; "Geral*" as X4 means "not X3".
  x.Conferir(Regra22, "22", {{kSorteio100, vars, {2}},
      {kSorteio100, {"Genero:Animado", "100", "", "Genero:Acelerado"}, {1, 2, 3}},
      {kSorteio1, {"Genero:Animado", "0", "Genero:Normal", "Genero:Acelerado"}, {3}},
      {kSorteio1, {"Genero:Animado", "0", "Genero:Normal", "Genero:Geral*"}, {1, 3}},
      {kSorteio1, {"Genero:Animado", "1", "Genero:Normal", ""}, {2}}});
  EXPECT_EQ(x.sorteio.sorteios, 5);  // one draw a run
}

TEST(Regra23, TagsDaUltimaPedemOuEvitamOsAlvos) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kEstilo, "Dance"}}).Musica(2, {{kGenero, "Pop"}, {kEstilo, "Dance"}});
  x.t.Musica(3, {{kGenero, "Pop"}, {kEstilo, "Balada"}});
  x.t.Tocadas({1});
  const char *r = "Genero:Rock", *p = "Genero:Pop", *d = "Estilo:Dance", *b = "Estilo:Balada";
  // Only "Sim" asks for the targets, and an X2 the last song fails leaves everything.
  x.Conferir(Regra23, "23", {{0, {r, "", "", "Sim", p, "", d}, {2}},
      {0, {r, d, "", "Não", p, "", b}, {1}}, {0, {r, "", "", "sim", p, "", ""}, {1}},
      {0, {r, "", "", "Sim", "Genero:Geral*", "", ""}, {1, 2, 3}},
      {0, {r, b, "", "Sim", p, "", ""}, {1, 2, 3}}, {0, {r, "", "", "", p, "", ""}, {1, 2, 3}}});
}

TEST(Regra24e27, GeneroInfluenteComOsCamposTrocados) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kGeneroSub, "Blues"}}).Musica(2, {{kGenero, "Blues"}, {kGeneroSub, "Rock"}});
  x.t.Musica(3, {{kGenero, "Rock;Blues"}, {kGeneroSub, "Jazz"}}).Musica(4, {{kGenero, "Jazz"}, {kGeneroSub, "Rock;Jazz"}});
  x.t.Musica(5, {{kGenero, "Blues"}});
  x.t.Tocadas({1});
  x.Conferir(Regra24, "24", {{kSorteio100, {"100"}, {2, 3, 5}}});
  x.Conferir(Regra27, "27", {{kSorteio100, {"100"}, {2, 4}}, {kSorteio1, {"0,4"}, {1, 2, 3, 4, 5}}});  // 0,4 rounds to 0
  EXPECT_EQ(x.sorteio.sorteios, 3);
  x.t.Tocadas({5});  // an empty GeneroSub matches no genre
  x.Conferir(Regra24, "24", {{kSorteio1, {"1"}, {}}});
}

TEST(Regra25, SlotsDeQuatroMinutosOuPosicaoModulo359ENumeroDesconhecidoUsaOLugar0) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kEstilo, "Dance"}}).Musica(2, {{kGenero, "Pop;Rock"}});
  x.t.Musica(3, {{kGenero, "Jazz"}, {kEstilo, "Dance"}});
  TabelasAgenda& a = x.t->agenda;
  a.TabelasNumero[0] = 5;
  a.TabelasNumero[2] = 7;
  for (auto [lugar, slot, n, filtro] :
       {std::tuple{0, 0, 0, u"Genero:Jazz"}, {2, 0, 0, u"Genero:Rock"}, {2, 1, 3, u"Estilo:Dance"},
        {2, 1, 5, u"Genero:Rock"}, {2, 358, 0, u"Genero:Pop"}, {2, 359, 0, u"Genero:Jazz"}})
    a.TabelasGrade(lugar, slot, n) = filtro;
  // By the clock (X2 = 0): 00:04 takes both filters of slot 1, an empty slot filters nothing, and
  // table 9, unknown, uses place 0.
  const std::tuple<int, int, int, const char*, Codigos> horas[] = {{0, 3, 59, "7", {1, 2}}, {0, 4, 0, "7", {1}},
      {23, 59, 0, "7", {3}}, {12, 0, 0, "7", {1, 2, 3}}, {0, 0, 0, "9", {3}}};
  for (const auto& [hora, minuto, segundo, tabela, mantidas] : horas) {
    x.t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, hora, minuto, segundo);
    EXPECT_EQ(x.t.Aplicar(Regra25, "25", {tabela, "0"}), mantidas) << hora << ":" << minuto << " " << tabela;
  }
  // By position (X2 = 1): slot 358 asks for Pop, and the artist-style comparison skips the
  // leading "Pop" of "Pop;Rock".
  for (const auto& [tocadas, mantidas] : {std::pair<int16_t, Codigos>{1, {1}}, {359, {1, 2}}, {358, {}}}) {
    x.t->SubstituirHistorico([&](Historico& h) { h.TotalTocadas = tocadas; });
    EXPECT_EQ(x.t.Aplicar(Regra25, "25", {"7", "1"}), mantidas) << tocadas;
  }
}

TEST(Regra28a30, ChanceDeTocarOuEvitarOTagEMarcasDoBanco) {
  Teste x;
  x.Generos({{1, "Rock"}, {2, "Pop"}});
  x.t.Musica(3);
  x.Conferir(Regra28, "28", {{kSorteio100, {"100", "sim", "Genero:Rock"}, {1}},
      {kSorteio100, {"100", "NÃO", "Genero:Rock"}, {2, 3}},
      {kSorteio100, {"100", "", "Genero:Rock"}, {2, 3}},
      {kSorteio1, {"0", "SIM", "Genero:Rock"}, {1, 2, 3}}});
  x.t->SubstituirHistorico([](Historico& h) {
    h.HistoricoTipo4[0] = true;
    h.HistoricoTipo5(1, 9) = true;  // a single, old mark
  });
  x.Conferir(Regra29, "29", {{kSorteio100, {"100"}, {1}}, {kSorteio1, {"0"}, {1, 2, 3}}});
  x.Conferir(Regra30, "30", {{kSorteio100, {"100"}, {1, 3}}, {kSorteio1, {"abc"}, {1, 2, 3}},
                             {kSorteio100, {"100", "21/11/2026"}, {1, 2, 3}}});
  EXPECT_EQ(x.sorteio.sorteios, 8);  // one draw a run, none on another day
}

TEST(Regra31, QuarentenaPorHoraDoDiaComLimitesEstritos) {
  Teste x(MontarDataHora(2026, 11, 22, 14, 0, 0));
  const int horas[][2] = {{12, 30}, {17, 0}, {11, 0}, {18, 0}, {22, 30}};
  for (int i = 0; i < 6; ++i) x.t.Musica(i + 1);
  x.t->SubstituirHistorico([&](Historico& h) {
    for (int i = 0; i < 5; ++i) {
      h.HistoricoTipo5(i, 0) = true;
      h.HistoricoTipo5Datas(i, 0) = MontarDataHora(2025, 3, 1 + i, horas[i][0], horas[i][1], 0);
    }
    h.HistoricoTipo5(4, 1) = true;  // a later cell inside the span counts as well
    h.HistoricoTipo5Datas(4, 1) = MontarDataHora(2026, 1, 1, 15, 0, 0);
  });
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"3"}), (Codigos{2, 3, 4, 6}));
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"0"}).size(), 6u);
  x.t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, 23, 0, 0);
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"3"}).size(), 6u);  // the span crosses midnight
  EXPECT_THROW(x.t.Aplicar(Regra31, "31", {"três"}), ErroExecucao);
}

TEST(Regra32, TrianguloComUmSorteioEArredondamentoPar) {
  Teste x;
  x.Vibes({{1, "5"}, {2, "4"}, {3, "3,9"}, {4, "7,5"}, {5, "3"}, {6, "4,25"}, {7, "5,75"}});
  // Draws of r = 50, 62, 63 and 1: 4.25 and 5.75 score 62.5, which rounds to 62; the edges score 0.
  x.Conferir(Regra32, "32", {{0.495f, {"2"}, {1, 2, 6, 7}}, {0.615f, {"2"}, {1, 6, 7}}, {0.625f, {"2"}, {1}},
                             {kSorteio1, {"2"}, {1, 2, 3, 6, 7}}});

  // Var1 = 0 divides by zero only after the draw has been made.
  x.t.RegraAtual("32", {"0"});
  EXPECT_EQ(teste::ErroDe([&] { Regra32(x.t.E()); }), CodigoErro::DivisaoPorZero);
  EXPECT_EQ(x.sorteio.sorteios, 5);  // one draw a run
}

TEST(Regra33, FaixaDeVibeInclusiva) {
  Teste x;
  x.Vibes({{1, "4"}, {2, "6"}, {3, "3,5"}, {4, "6,5"}, {5, "5"}});
  x.t.Musica(6);  // no vibe: 0
  x.Conferir(Regra33, "33", {{0, {"1"}, {1, 2, 5}}, {0, {"0"}, {5}}, {0, {"5"}, {1, 2, 3, 4, 5, 6}},
                             {0, {"1", "", "11:00", "12:00"}, {1, 2, 3, 4, 5, 6}}});
}

}  // namespace
}  // namespace lumavox
