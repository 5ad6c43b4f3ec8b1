#include <gtest/gtest.h>

#include "base/erro.h"
#include "stores/codec.h"

using namespace lumavox;

namespace {

bool ChamadaInvalida(std::u16string_view linha) {
  try {
    DecodificarLinha(linha);
  } catch (const ErroExecucao& e) {
    return e.Codigo() == CodigoErro::ChamadaInvalida;
  }
  return false;
}

}  // namespace

TEST(DecodificarLinha, GruposDeCincoDigitos) {
  EXPECT_EQ(DecodificarLinha(u"00006500066"), u"AB");
  EXPECT_EQ(DecodificarLinha(u"X0006500066"), u"AB");  // the leading character is never read
  EXPECT_EQ(DecodificarLinha(u"000065000667"), u"AB");
  EXPECT_EQ(DecodificarLinha(u"00006566"), u"AB");  // a short last group still counts
  EXPECT_EQ(DecodificarLinha(u"0"), u"");
  EXPECT_EQ(DecodificarLinha(u""), u"");
  EXPECT_EQ(DecodificarLinha(u"07"), u"");
  EXPECT_EQ(DecodificarLinha(u"065"), u"A");
  EXPECT_EQ(DecodificarLinha(u"0abcde00065"), (Texto{u'\0', u'A'}));
  EXPECT_EQ(DecodificarLinha(u"0     00065"), (Texto{u'\0', u'A'}));
  EXPECT_EQ(DecodificarLinha(u"000225"), u"á");
  EXPECT_EQ(DecodificarLinha(u"065535"), u"\uFFFF");
}

TEST(DecodificarLinha, CodigosInvalidosLancam) {
  EXPECT_TRUE(ChamadaInvalida(u"065536"));
  EXPECT_TRUE(ChamadaInvalida(u"099999"));
  EXPECT_TRUE(ChamadaInvalida(u"055296"));          // lone high surrogate
  EXPECT_TRUE(ChamadaInvalida(u"056832"));          // lone low surrogate
  EXPECT_TRUE(ChamadaInvalida(u"0568325535700065"));  // pair in the wrong order
  EXPECT_EQ(DecodificarLinha(u"0553575683200065"), u"😀A");
}

TEST(CodificarLinha, IdaEVolta) {
  EXPECT_EQ(CodificarLinha(u"AB"), u"00006500066");
  EXPECT_EQ(CodificarLinha(u""), u"0");
  for (const char16_t* t : {u"Rock", u"Canção Romântica", u"Pra Baixo;Sexy;", u"😀 €", u"\uFFFF"})
    EXPECT_EQ(DecodificarLinha(CodificarLinha(t)), t);
}
