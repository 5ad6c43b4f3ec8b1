#include <gtest/gtest.h>

#include "stores/ritmo.h"

using namespace lumavox;

TEST(ValorRitmo, NumerosETextosFixos) {
  EXPECT_EQ(ValorRitmo(u"7,5"), 7.5);
  EXPECT_EQ(ValorRitmo(u""), 0);
  EXPECT_EQ(ValorRitmo(u"Rápida;"), 9);
  EXPECT_EQ(ValorRitmo(u"Rápida;Normal;"), 7);
  EXPECT_EQ(ValorRitmo(u"Normal;Rápida;"), 7);
  EXPECT_EQ(ValorRitmo(u"Normal;"), 5);
  EXPECT_EQ(ValorRitmo(u"Normal;Lenta;"), 3);
  EXPECT_EQ(ValorRitmo(u"Lenta;Normal;"), 3);
  EXPECT_EQ(ValorRitmo(u"Lenta;"), 1);
  EXPECT_EQ(ValorRitmo(u"Nacional"), -1);
  EXPECT_EQ(ValorRitmo(u"Internacional"), 1);
  EXPECT_EQ(ValorRitmo(u"rápida;"), 0);  // fixed texts match only whole and as spelt
  EXPECT_EQ(ValorRitmo(u"Rápida;Lenta;"), 0);
}

TEST(ValorRitmo, ListaDePalavras) {
  EXPECT_EQ(ValorRitmo(u"Normal;Calmo;"), 3);
  EXPECT_EQ(ValorRitmo(u"Calmo;Animado;Sexy;"), 6);
  EXPECT_EQ(ValorRitmo(u"Sexy;Relax;"), 0);
  EXPECT_EQ(ValorRitmo(u"Calmo;Animado"), 1);  // text after the last ";" is no word
  EXPECT_EQ(ValorRitmo(u"Animado;Animado;Calmo;"), 19.0 / 3);
  EXPECT_EQ(ValorRitmo(u"Sexy;Animado;"), 10);  // mood is added after averaging
  EXPECT_EQ(ValorRitmo(u";;Normal;;"), 5);
  EXPECT_EQ(ValorRitmo(u"Pra Baixo;Romântico;Comedia;"), -3);
  EXPECT_EQ(ValorRitmo(u"Agitado;Pista;Positivo;Cover;"), 3);
  EXPECT_EQ(ValorRitmo(u"calmo;sexy;Normal ;"), 0);
  EXPECT_EQ(ValorRitmo(u"Nacional;"), 0);
}
