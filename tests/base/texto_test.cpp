#include <gtest/gtest.h>

#include "base/texto.h"

using namespace lumavox;

TEST(Texto, Utf8EWindows1252) {
  const std::string original = "Canção – 😀 Música";
  EXPECT_EQ(ParaUtf8(DeUtf8(original)), original);
  EXPECT_EQ(DeUtf8("a\xFF" "b"), u"a\uFFFDb");
  EXPECT_EQ(ParaUtf8(std::u16string(1, char16_t(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(DecodificarBytes("\xC3\xA1"), u"á");
  EXPECT_EQ(DecodificarBytes("\x80"), u"€");
  // One invalid byte makes the whole text Windows-1252, including bytes that were valid UTF-8.
  EXPECT_EQ(DecodificarBytes("m\xFAsica \xC3\xA1"), u"música Ã¡");
}

TEST(Texto, DividirLinhasLfCrlfELinhasVazias) {
  for (const auto& [texto, linhas] : std::initializer_list<std::pair<Texto, std::vector<Texto>>>{
           {u"a\r\nb\r\n", {u"a", u"b"}}, {u"a\n\r\n\nb\n", {u"a", u"", u"", u"b"}}, {u"", {}},
           {u"a\r\r\nb", {u"a\r", u"b"}}, {u"x\ry\n", {u"x\ry"}}})
    EXPECT_EQ(DividirLinhas(texto), linhas) << ParaUtf8(texto);
}

TEST(Texto, MaiusculasSimplesEComparacaoSemCaixa) {
  EXPECT_EQ(Maiusculas(u"Rock ção 80's ü"), u"ROCK ÇÃO 80'S Ü");
  EXPECT_EQ(Maiusculas(u"ß"), u"ß");
  // Plain ASCII skips the case tables; every character must come out as the tables give it.
  for (char16_t c = 0; c < 0x80; ++c) EXPECT_EQ(Maiusculas(Texto{c})[0], Maiusculas(Texto{c, u'é'})[0]) << int(c);
  EXPECT_EQ(Maiusculas(u"\U00010428"), u"\U00010400");  // outside the BMP
  EXPECT_TRUE(IguaisSemCaixa(u"Ação", u"aÇÃo"));
  EXPECT_FALSE(IguaisSemCaixa(u"Rock", u"Rock ") || IguaisSemCaixa(u"ß", u"SS") || IguaisSemCaixa(u"a", u"á"));
}
