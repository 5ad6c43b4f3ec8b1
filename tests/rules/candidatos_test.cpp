#include <gtest/gtest.h>

#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "rules/candidatos.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;

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

TEST(LocalizarMusica, PrimeiroSlotEQuatroMilParaAusente) {
  EstadoTeste t;
  t.Musica(55).Musica(66).Musica(55);
  EXPECT_EQ(LocalizarMusica(t.E(), 55), 0);
  EXPECT_EQ(LocalizarMusica(t.E(), 66), 1);
  EXPECT_EQ(LocalizarMusica(t.E(), 77), kSlotAusente);
  // A stale slot past the collection still counts, and code 0 fills every unused slot.
  t->CarregarAcervo([](Acervo& a) { a.AcervoCodigos[4000] = 77; });
  EXPECT_EQ(LocalizarMusica(t.E(), 77), 4000);
  EXPECT_EQ(LocalizarMusica(t.E(), 0), 3);
  t.Tocadas({66});
  EXPECT_EQ(LocalizarMusicaTocada(t.E(), 0), 1);
  EXPECT_EQ(LocalizarMusicaTocada(t.E(), -1), 3);  // an empty database slot holds code 0
  EXPECT_THROW(LocalizarMusicaTocada(t.E(), -4001), ErroExecucao);
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
