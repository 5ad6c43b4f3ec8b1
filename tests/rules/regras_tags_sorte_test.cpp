// Rules "08", "22" to "25" and "27" to "33", called directly on a hand-built state. Chance
// rules draw from a source that returns one fixed value and counts the draws: a chance of 0 is
// tried against the lowest draw (1) and a chance of 100 against the highest (100).
#include <gtest/gtest.h>

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
  Teste& Vibe(int32_t codigo, const char* vibe) {
    t.Musica(codigo, {{kVelocidade, vibe}, {kRitmo, vibe}});
    return *this;
  }
  EstadoTeste t;
  SorteioFixo sorteio;
};

TEST(Regra08, FaixaDeNotaInclusivaEDoisTagsSoNasHoras) {
  Teste x;
  x.t.Musica(1, {{kNota, "10"}, {kGenero, "Rock"}, {kEstilo, "Dance"}})
      .Musica(2, {{kNota, "8,5"}, {kGenero, "Rock"}, {kEstilo, "Dance"}})
      .Musica(3, {{kNota, "7,9"}, {kGenero, "Rock"}, {kEstilo, "Dance"}})
      .Musica(4, {{kNota, "9"}, {kGenero, "Rock"}})
      .Musica(5, {{kNota, "9"}, {kEstilo, "Dance"}})
      .Musica(6, {{kGenero, "Rock"}, {kEstilo, "Dance"}});
  auto Com = [&](const char* alta, const char* baixa, const char* de, const char* ate) {
    return x.t.Aplicar(Regra08, "08", {alta, baixa, "Genero:Rock", "Estilo:Dance", de, ate, "noite"});
  };
  EXPECT_EQ(Com("10", "8", "09:00", "10:00"), (Codigos{1, 2}));
  EXPECT_EQ(Com("10", "0", "09:00", "10:00"), (Codigos{1, 2, 3, 6}));  // an empty Nota is 0
  EXPECT_TRUE(Com("8", "10", "09:00", "10:00").empty());               // band given low first
  EXPECT_EQ(Com("10", "8", "10:00:01", "12:00").size(), 6u);  // outside X5..X6, period ignored
}

TEST(Regra22, DepoisDoTagUmSorteioEscolheX3OuX4) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Animado"}})
      .Musica(2, {{kGenero, "Normal"}})
      .Musica(3, {{kGenero, "Acelerado"}});
  auto Com = [&](const char* chance, const char* x3, const char* x4) {
    return x.t.Aplicar(Regra22, "22", {"Genero:Animado", chance, x3, x4});
  };
  EXPECT_EQ(Com("100", "Genero:Normal", "Genero:Acelerado").size(), 3u);  // empty history
  EXPECT_EQ(x.sorteio.sorteios, 0);

  x.t.Tocadas({2});  // the last song lacks X1: no draw either
  EXPECT_EQ(Com("100", "Genero:Normal", "Genero:Acelerado").size(), 3u);
  EXPECT_EQ(x.sorteio.sorteios, 0);

  x.t.Tocadas({1});
  x.sorteio.valor = kSorteio100;
  EXPECT_EQ(Com("100", "Genero:Normal", "Genero:Acelerado"), (Codigos{2}));
  EXPECT_EQ(x.sorteio.sorteios, 1);
  EXPECT_EQ(Com("100", "", "Genero:Acelerado").size(), 3u);  // X3 empty: the draw changes nothing
  x.sorteio.valor = kSorteio1;
  EXPECT_EQ(Com("0", "Genero:Normal", "Genero:Acelerado"), (Codigos{3}));
  EXPECT_EQ(Com("0", "Genero:Normal", "Genero:Geral*"), (Codigos{1, 3}));  // "not X3"
  EXPECT_EQ(Com("1", "Genero:Normal", ""), (Codigos{2}));
}

TEST(Regra23, TagsDaUltimaPedemOuEvitamOsAlvos) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kEstilo, "Dance"}})
      .Musica(2, {{kGenero, "Pop"}, {kEstilo, "Dance"}})
      .Musica(3, {{kGenero, "Pop"}, {kEstilo, "Balada"}});
  auto Com = [&](const char* x2, const char* modo, const char* alvo1, const char* alvo2) {
    return x.t.Aplicar(Regra23, "23", {"Genero:Rock", x2, "", modo, alvo1, "", alvo2});
  };
  EXPECT_EQ(Com("", "Sim", "Genero:Pop", "").size(), 3u);  // empty history
  x.t.Tocadas({1});
  EXPECT_EQ(Com("", "Sim", "Genero:Pop", "Estilo:Dance"), (Codigos{2}));
  EXPECT_EQ(Com("Estilo:Dance", "Não", "Genero:Pop", "Estilo:Balada"), (Codigos{1}));
  EXPECT_EQ(Com("", "sim", "Genero:Pop", ""), (Codigos{1}));  // only "Sim" plays
  EXPECT_EQ(Com("", "Sim", "Genero:Geral*", "").size(), 3u);
  EXPECT_EQ(Com("Estilo:Balada", "Sim", "Genero:Pop", "").size(), 3u);  // X2 fails on the last song
  EXPECT_EQ(Com("", "", "Genero:Pop", "").size(), 3u);
}

TEST(Regra24e27, GeneroInfluenteComOsCamposTrocados) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kGeneroSub, "Blues"}})
      .Musica(2, {{kGenero, "Blues"}, {kGeneroSub, "Rock"}})
      .Musica(3, {{kGenero, "Rock;Blues"}, {kGeneroSub, "Jazz"}})
      .Musica(4, {{kGenero, "Jazz"}, {kGeneroSub, "Rock;Jazz"}})
      .Musica(5, {{kGenero, "Blues"}});
  EXPECT_EQ(x.t.Aplicar(Regra24, "24", {"100"}).size(), 5u);  // empty history: no draw
  EXPECT_EQ(x.sorteio.sorteios, 0);
  x.t.Tocadas({1});
  x.sorteio.valor = kSorteio100;
  EXPECT_EQ(x.t.Aplicar(Regra24, "24", {"100"}), (Codigos{2, 3, 5}));
  EXPECT_EQ(x.t.Aplicar(Regra27, "27", {"100"}), (Codigos{2, 4}));
  EXPECT_EQ(x.sorteio.sorteios, 2);
  x.sorteio.valor = kSorteio1;
  EXPECT_EQ(x.t.Aplicar(Regra27, "27", {"0,4"}).size(), 5u);  // rounds to 0
  x.t.Tocadas({5});                                         // an empty GeneroSub matches no genre
  EXPECT_TRUE(x.t.Aplicar(Regra24, "24", {"1"}).empty());
}

TEST(Regra25, SlotsDeQuatroMinutosOuPosicaoModulo359ENumeroDesconhecidoUsaOLugar0) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}, {kEstilo, "Dance"}})
      .Musica(2, {{kGenero, "Pop;Rock"}})
      .Musica(3, {{kGenero, "Jazz"}, {kEstilo, "Dance"}});
  TabelasAgenda& a = x.t->agenda;
  a.TabelasNumero[0] = 5;
  a.TabelasNumero[2] = 7;
  a.TabelasGrade(0, 0, 0) = u"Genero:Jazz";
  a.TabelasGrade(2, 0, 0) = u"Genero:Rock";
  a.TabelasGrade(2, 1, 3) = u"Estilo:Dance";
  a.TabelasGrade(2, 1, 5) = u"Genero:Rock";
  a.TabelasGrade(2, 358, 0) = u"Genero:Pop";
  a.TabelasGrade(2, 359, 0) = u"Genero:Jazz";
  auto As = [&](int hora, int minuto, int segundo = 0, const char* tabela = "7") {
    x.t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, hora, minuto, segundo);
    return x.t.Aplicar(Regra25, "25", {tabela, "0"});
  };
  auto Posicao = [&](int16_t tocadas) {
    x.t->SubstituirHistorico([&](Historico& h) { h.TotalTocadas = tocadas; });
    return x.t.Aplicar(Regra25, "25", {"7", "1"});
  };
  EXPECT_EQ(As(0, 3, 59), (Codigos{1, 2}));
  EXPECT_EQ(As(0, 4), (Codigos{1}));  // both filters of slot 1
  EXPECT_EQ(As(23, 59), (Codigos{3}));
  EXPECT_EQ(As(12, 0).size(), 3u);  // an empty slot filters nothing
  EXPECT_EQ(Posicao(1), (Codigos{1}));
  EXPECT_EQ(Posicao(359), (Codigos{1, 2}));
  // Slot 358 asks for Pop, and the artist-style comparison skips the leading "Pop" of "Pop;Rock".
  EXPECT_TRUE(Posicao(358).empty());
  EXPECT_EQ(As(0, 0, 0, "9"), (Codigos{3}));
  x.t->agenda.Limpar();
  EXPECT_EQ(As(0, 0).size(), 3u);
}

TEST(Regra28, ChanceDeTocarOuEvitarOTag) {
  Teste x;
  x.t.Musica(1, {{kGenero, "Rock"}}).Musica(2, {{kGenero, "Pop"}});
  x.sorteio.valor = kSorteio100;
  EXPECT_EQ(x.t.Aplicar(Regra28, "28", {"100", "sim", "Genero:Rock"}), (Codigos{1}));
  EXPECT_EQ(x.t.Aplicar(Regra28, "28", {"100", "NÃO", "Genero:Rock"}), (Codigos{2}));
  EXPECT_EQ(x.t.Aplicar(Regra28, "28", {"100", "", "Genero:Rock"}), (Codigos{2}));
  x.sorteio.valor = kSorteio1;
  EXPECT_EQ(x.t.Aplicar(Regra28, "28", {"0", "SIM", "Genero:Rock"}).size(), 2u);
  EXPECT_EQ(x.sorteio.sorteios, 4);
}

TEST(Regra29e30, MarcasDoBancoPorChance) {
  Teste x;
  x.t.Musica(1).Musica(2).Musica(3);
  x.t->SubstituirHistorico([](Historico& h) {
    h.HistoricoTipo4[0] = true;
    h.HistoricoTipo5(1, 9) = true;  // a single, old mark
  });
  x.sorteio.valor = kSorteio100;
  EXPECT_EQ(x.t.Aplicar(Regra29, "29", {"100"}), (Codigos{1}));
  EXPECT_EQ(x.t.Aplicar(Regra30, "30", {"100"}), (Codigos{1, 3}));
  x.sorteio.valor = kSorteio1;
  EXPECT_EQ(x.t.Aplicar(Regra29, "29", {"0"}).size(), 3u);
  EXPECT_EQ(x.t.Aplicar(Regra30, "30", {"abc"}).size(), 3u);
  const int antes = x.sorteio.sorteios;
  EXPECT_EQ(x.t.Aplicar(Regra30, "30", {"100", "21/11/2026"}).size(), 3u);  // another day: no draw
  EXPECT_EQ(x.sorteio.sorteios, antes);
}

TEST(Regra31, QuarentenaPorHoraDoDiaComLimitesEstritos) {
  Teste x(MontarDataHora(2026, 11, 22, 14, 0, 0));
  const int horas[][2] = {{12, 30}, {17, 0}, {11, 0}, {18, 0}, {22, 30}};
  for (int i = 0; i < 5; ++i) x.t.Musica(i + 1);
  x.t->SubstituirHistorico([&](Historico& h) {
    for (int i = 0; i < 5; ++i) {
      h.HistoricoTipo5(i, 0) = true;
      h.HistoricoTipo5Datas(i, 0) = MontarDataHora(2025, 3, 1 + i, horas[i][0], horas[i][1], 0);
    }
    h.HistoricoTipo5(4, 1) = true;  // a later cell inside the span counts as well
    h.HistoricoTipo5Datas(4, 1) = MontarDataHora(2026, 1, 1, 15, 0, 0);
  });
  x.t.Musica(6);
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"3"}), (Codigos{2, 3, 4, 6}));
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"0"}).size(), 6u);
  x.t->selecao.DataHoraReferencia = MontarDataHora(2026, 11, 22, 23, 0, 0);
  EXPECT_EQ(x.t.Aplicar(Regra31, "31", {"3"}).size(), 6u);  // the span crosses midnight
  EXPECT_THROW(x.t.Aplicar(Regra31, "31", {"três"}), ErroExecucao);
}

TEST(Regra32, TrianguloComUmSorteioEArredondamentoPar) {
  Teste x;
  x.Vibe(1, "5").Vibe(2, "4").Vibe(3, "3,9").Vibe(4, "7,5").Vibe(5, "3").Vibe(6, "4,25").Vibe(
      7, "5,75");
  x.sorteio.valor = 0.495f;  // r = 50
  EXPECT_EQ(x.t.Aplicar(Regra32, "32", {"2"}), (Codigos{1, 2, 6, 7}));
  EXPECT_EQ(x.sorteio.sorteios, 1);
  // 4.25 and 5.75 score 62.5, which rounds to 62.
  x.sorteio.valor = 0.615f;  // r = 62
  EXPECT_EQ(x.t.Aplicar(Regra32, "32", {"2"}), (Codigos{1, 6, 7}));
  x.sorteio.valor = 0.625f;  // r = 63
  EXPECT_EQ(x.t.Aplicar(Regra32, "32", {"2"}), (Codigos{1}));
  x.sorteio.valor = kSorteio1;  // the edges score 0
  EXPECT_EQ(x.t.Aplicar(Regra32, "32", {"2"}), (Codigos{1, 2, 3, 6, 7}));

  // Var1 = 0 divides by zero only after the draw has been made.
  x.t.RegraAtual("32", {"0"});
  const int antes = x.sorteio.sorteios;
  EXPECT_EQ(teste::ErroDe([&] { Regra32(x.t.E()); }), CodigoErro::DivisaoPorZero);
  EXPECT_EQ(x.sorteio.sorteios, antes + 1);
}

TEST(Regra33, FaixaDeVibeInclusiva) {
  Teste x;
  x.Vibe(1, "4").Vibe(2, "6").Vibe(3, "3,5").Vibe(4, "6,5").Vibe(5, "5");
  x.t.Musica(6);  // no vibe: 0
  EXPECT_EQ(x.t.Aplicar(Regra33, "33", {"1"}), (Codigos{1, 2, 5}));
  EXPECT_EQ(x.t.Aplicar(Regra33, "33", {"0"}), (Codigos{5}));
  EXPECT_EQ(x.t.Aplicar(Regra33, "33", {"5"}).size(), 6u);
  EXPECT_EQ(x.t.Aplicar(Regra33, "33", {"1", "", "11:00", "12:00"}).size(), 6u);
}

}  // namespace
}  // namespace lumavox
