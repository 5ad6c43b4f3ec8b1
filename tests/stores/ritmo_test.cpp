#include <gtest/gtest.h>

#include "base/texto.h"
#include "stores/ritmo.h"

using namespace lumavox;

TEST(ValorRitmo, NumerosTextosFixosEListasDePalavras) {
  const std::pair<std::u16string_view, double> casos[] = {
      {u"7,5", 7.5}, {u"", 0}, {u"Rápida;", 9}, {u"Normal;Rápida;", 7}, {u"Lenta;Normal;", 3},
      {u"Nacional", -1}, {u"Internacional", 1},
      {u"rápida;", 0}, {u"Rápida;Lenta;", 0},  // fixed texts match only whole and as spelt
      {u"Normal;Calmo;", 3}, {u"Calmo;Animado;Sexy;", 6}, {u"Sexy;Relax;", 0},
      {u"Calmo;Animado", 1},  // text after the last ";" is no word
      {u"Animado;Animado;Calmo;", 19.0 / 3}, {u"Sexy;Animado;", 10},  // mood is added after averaging
      {u";;Normal;;", 5}, {u"Pra Baixo;Romântico;Comedia;", -3}, {u"calmo;sexy;Normal ;", 0}, {u"Nacional;", 0}};
  for (const auto& [texto, valor] : casos) EXPECT_EQ(ValorRitmo(texto), valor) << ParaUtf8(texto);
}
