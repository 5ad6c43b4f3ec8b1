#include <gtest/gtest.h>

#include <cstdint>

#include "base/erro.h"
#include "base/numeros.h"

using namespace lumavox;

namespace {

template <typename F>
CodigoErro CodigoLancado(F&& f) {
  try {
    f();
  } catch (const ErroExecucao& e) {
    return e.Codigo();
  }
  ADD_FAILURE() << "nenhum ErroExecucao lançado";
  return CodigoErro::ChamadaInvalida;
}

}  // namespace

TEST(ValorNumerico, AceitaVirgulaEPontoERecusaOResto) {
  EXPECT_EQ(ValorNumerico(u""), 0);
  EXPECT_EQ(ValorNumerico(u"   "), 0);
  EXPECT_EQ(ValorNumerico(u"abc"), 0);
  EXPECT_EQ(ValorNumerico(u"7,5"), 7.5);
  EXPECT_EQ(ValorNumerico(u"7.5"), 7.5);
  EXPECT_EQ(ValorNumerico(u" -3 "), -3);
  EXPECT_EQ(ValorNumerico(u"+2"), 2);
  EXPECT_EQ(ValorNumerico(u"00065"), 65);
  EXPECT_EQ(ValorNumerico(u"5,"), 5);
  EXPECT_EQ(ValorNumerico(u",5"), 0.5);
  EXPECT_EQ(ValorNumerico(u"0,1"), 0.1);  // correctly rounded, not accumulated
  EXPECT_EQ(ValorNumerico(u"12345678901234567890"), 12345678901234567890.0);
  EXPECT_EQ(ValorNumerico(u"-" + std::u16string(70, u'0') + u"7,5"), -7.5);
  EXPECT_EQ(ValorNumerico(u"1.000,5"), 0);
  EXPECT_EQ(ValorNumerico(u"1e5"), 0);
  EXPECT_EQ(ValorNumerico(u"-"), 0);
  EXPECT_EQ(ValorNumerico(u","), 0);
  EXPECT_EQ(ValorNumerico(u"7 5"), 0);
  EXPECT_EQ(ValorNumerico(u"--3"), 0);
  EXPECT_TRUE(EhNumerico(u"12"));
  EXPECT_FALSE(EhNumerico(u""));
}

TEST(ValorNumerico, ForaDoAlcanceDoDouble) {
  // Past the double's range is not a number; too small to tell from zero is zero.
  const std::u16string enorme = u"8" + std::u16string(400, u'6');
  EXPECT_FALSE(ConverterNumero(enorme).has_value());
  EXPECT_EQ(ValorNumerico(enorme), 0);
  EXPECT_EQ(CodigoLancado([&] { TextoParaInteiro32(enorme); }), CodigoErro::TiposIncompativeis);
  EXPECT_FALSE(ConverterNumero(u"-" + enorme + u",5").has_value());
  EXPECT_EQ(ConverterNumero(u"0," + std::u16string(400, u'0') + u"1"), 0.0);
  EXPECT_EQ(ConverterNumero(std::u16string(400, u'0') + u"1,5"), 1.5);
}

TEST(ArredondarPar, MetadesVaoParaOPar) {
  EXPECT_EQ(ArredondarPar(0.5), 0);
  EXPECT_EQ(ArredondarPar(1.5), 2);
  EXPECT_EQ(ArredondarPar(2.5), 2);
  EXPECT_EQ(ArredondarPar(-0.5), 0);
  EXPECT_EQ(ArredondarPar(-1.5), -2);
  EXPECT_EQ(ArredondarPar(2.6), 3);
}

TEST(ParaInteiro, EstouroNosLimites) {
  EXPECT_EQ(ParaInteiro16(32767.4), 32767);
  EXPECT_EQ(ParaInteiro16(-32768.5), -32768);
  EXPECT_EQ(CodigoLancado([] { ParaInteiro16(32767.5); }), CodigoErro::Estouro);
  EXPECT_EQ(CodigoLancado([] { ParaInteiro16(-32769); }), CodigoErro::Estouro);
  EXPECT_EQ(ParaInteiro32(2147483647.4), INT32_MAX);
  EXPECT_EQ(ParaInteiro32(-2147483648.0), INT32_MIN);
  EXPECT_EQ(CodigoLancado([] { ParaInteiro32(2147483647.5); }), CodigoErro::Estouro);
  EXPECT_EQ(CodigoLancado([] { ParaInteiro32(1e300); }), CodigoErro::Estouro);
}

TEST(TextoParaInteiro, ExigeNumero) {
  EXPECT_EQ(TextoParaInteiro32(u" 123 "), 123);
  EXPECT_EQ(TextoParaInteiro32(u"2,5"), 2);
  EXPECT_EQ(CodigoLancado([] { TextoParaInteiro32(u""); }), CodigoErro::TiposIncompativeis);
  EXPECT_EQ(CodigoLancado([] { TextoParaInteiro32(u"abc"); }), CodigoErro::TiposIncompativeis);
  EXPECT_EQ(CodigoLancado([] { TextoParaInteiro16(u"40000"); }), CodigoErro::Estouro);
}

TEST(FormatarNumero, VirgulaEQuinzeDigitos) {
  EXPECT_EQ(FormatarNumero(7.5), u"7,5");
  EXPECT_EQ(FormatarNumero(5), u"5");
  EXPECT_EQ(FormatarNumero(-1), u"-1");
  EXPECT_EQ(FormatarNumero(-0.0), u"0");
  EXPECT_EQ(FormatarNumero(1.0 / 3), u"0,333333333333333");
  EXPECT_EQ(FormatarNumero(0.1 + 0.2), u"0,3");
  EXPECT_EQ(FormatarNumero(123456789012), u"123456789012");
}

TEST(FormatarZeros, CompletaComZerosSemCortar) {
  EXPECT_EQ(FormatarZeros(123, 7), "0000123");
  EXPECT_EQ(FormatarZeros(12345678, 7), "12345678");
  EXPECT_EQ(FormatarZeros(-5, 7), "-0000005");
  EXPECT_EQ(FormatarZeros(0, 7), "0000000");
}
