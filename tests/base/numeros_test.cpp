#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "apoio/estacao.h"
#include "base/erro.h"
#include "base/numeros.h"

using namespace lumavox;
using teste::ErroDe;

TEST(ValorNumerico, AceitaVirgulaEPontoERecusaOResto) {
  const std::pair<std::u16string, double> casos[] = {
      {u"", 0},       {u"   ", 0}, {u"7,5", 7.5}, {u"7.5", 7.5}, {u" -3 ", -3}, {u"+2", 2},
      {u"00065", 65}, {u"5,", 5},  {u",5", 0.5},  {u"0,1", 0.1}, {u"1.000,5", 0}, {u"1e5", 0},
      {u"-", 0},      {u",", 0},   {u"7 5", 0},   {u"--3", 0},    {u"abc", 0},
      {u"12345678901234567890", 12345678901234567890.0},  // correctly rounded, not accumulated
      {u"-" + std::u16string(70, u'0') + u"7,5", -7.5}};
  for (const auto& [texto, valor] : casos) EXPECT_EQ(ValorNumerico(texto), valor) << ParaUtf8(texto);
  EXPECT_TRUE(EhNumerico(u"12") && !EhNumerico(u""));

  // Past the double's range is not a number; too small to tell from zero is zero.
  EXPECT_FALSE(ConverterNumero(u"8" + std::u16string(400, u'6')).has_value());
  EXPECT_EQ(ConverterNumero(u"0," + std::u16string(400, u'0') + u"1"), 0.0);
}

TEST(ParaInteiro, EstouroNosLimitesETextoQueNaoENumero) {
  EXPECT_EQ(ParaInteiro16(32767.4), 32767);
  EXPECT_EQ(ParaInteiro16(-32768.5), -32768);  // halves go to the even neighbour
  EXPECT_EQ(ErroDe([] { ParaInteiro16(32767.5); }), CodigoErro::Estouro);
  EXPECT_EQ(ErroDe([] { ParaInteiro16(-32769); }), CodigoErro::Estouro);
  EXPECT_EQ(ErroDe([] { ParaInteiro32(2147483647.5); }), CodigoErro::Estouro);
  EXPECT_EQ(TextoParaInteiro32(u"2,5"), 2);
  EXPECT_EQ(ErroDe([] { TextoParaInteiro32(u""); }), CodigoErro::TiposIncompativeis);
}

// Whole numbers and halves take a short way; it must write what the formatted print writes,
// with a comma, fifteen significant digits and -0 as 0.
TEST(FormatarNumero, ComoAFormaGeralEZerosAEsquerda) {
  auto Impresso = [](double v) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, v == std::trunc(v) && std::fabs(v) < 1e15 ? "%.0f" : "%.15G", v);
    Texto texto;
    for (const char* p = buffer; *p; ++p) texto.push_back(*p == '.' ? u',' : static_cast<char16_t>(*p));
    return v == 0 ? Texto(u"0") : texto;
  };
  for (double v : {-0.0, 1.0 / 3, 0.1 + 0.2, 4e12 + 0.5, -9.99e12, 123456789012.0, 9.5e12, 1.5e13, 3e15})
    EXPECT_EQ(FormatarNumero(v), Impresso(v)) << v;
  for (int metades = -4001; metades <= 4001; ++metades)
    ASSERT_EQ(FormatarNumero(metades / 2.0), Impresso(metades / 2.0)) << metades;
  EXPECT_EQ(FormatarZeros(123, 7), "0000123");
  EXPECT_EQ(FormatarZeros(-5, 7), "-0000005");
}
