// Exact values of the line code; round trips and lone surrogates are the fuzz target's business.
#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "base/erro.h"
#include "stores/codec.h"

using namespace lumavox;

TEST(Codec, GruposDeCincoDigitosDepoisDeUmCaractereNuncaLido) {
  const std::pair<std::u16string_view, Texto> casos[] = {
      {u"X0006500066", u"AB"},  {u"000065000667", u"AB"}, {u"00006566", u"AB"},  // a short last group counts
      {u"0", u""},              {u"", u""},               {u"07", u""},
      {u"065", u"A"},           {u"0abcde00065", Texto{u'\0', u'A'}},
      {u"065535", u"\uFFFF"},   {u"0553575683200065", u"😀A"}};
  for (const auto& [linha, texto] : casos) EXPECT_EQ(DecodificarLinha(linha), texto) << ParaUtf8(linha);
  for (std::u16string_view ruim : {u"065536", u"055296", u"0568325535700065"})
    EXPECT_EQ(teste::ErroDe([&] { DecodificarLinha(ruim); }), CodigoErro::ChamadaInvalida) << ParaUtf8(ruim);
  EXPECT_EQ(CodificarLinha(u"AB"), u"00006500066");
  EXPECT_EQ(CodificarLinha(u""), u"0");
}
