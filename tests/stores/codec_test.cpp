// Exact values of the line code; round trips and lone surrogates are the fuzz target's business.
#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "base/erro.h"
#include "stores/codec.h"

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

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

// A file is decoded eight bytes at a time wherever a group has enough of the file after it; each
// line must still read as the general decoder reads it alone, refusals included, whether it is
// followed by another line or ends the file.
TEST(Codec, ArquivoLidoComoCadaLinhaSozinha) {
  std::vector<std::string> linhas;
  // Refused groups (surrogates alone, values past 65535) are sampled more thinly: each costs a file.
  for (unsigned v = 0; v < 100000; v += (v >= 0xD800 && v < 0xE000) || v > 65535 ? 401 : 7) {
    char g[8];
    std::snprintf(g, sizeof g, "%05u", v);
    linhas.push_back(std::string("0") + g + "00065" + g + "1");
  }
  const std::string base = "000065000660";
  for (size_t pos = 1; pos < base.size(); ++pos)
    for (char c : {'/', ':', ' ', '.', 'x', '-', '+', 'E', '&', '\x7f'}) {
      std::string l = base;
      l[pos] = c;
      linhas.push_back(l);
    }
  teste::EstacaoTeste estacao;
  auto LerArquivo = [&](const std::string& conteudo) {
    estacao.GravarTexto("x.rdb", conteudo);
    std::vector<Texto> lidas;
    ParaCadaLinhaCodificada(ArquivosReais(), estacao.Caminho("x.rdb"), [&](Texto&& t) { lidas.push_back(t); });
    return lidas;
  };
  std::string boas;
  std::vector<Texto> esperadas;
  long recusadas = 0;
  for (const std::string& l : linhas) {
    const Texto sozinha = DeUtf8(l);
    Texto esperada;
    const std::optional<CodigoErro> erro = teste::ErroDe([&] { esperada = DecodificarLinha(sozinha); });
    if (erro) {
      ++recusadas;
      for (const std::string& fim : {std::string(), std::string("\n00065")})
        EXPECT_EQ(teste::ErroDe([&] { LerArquivo(l + fim); }), erro) << l;
      continue;
    }
    boas += l + "\n";
    esperadas.push_back(esperada);
    ASSERT_EQ(LerArquivo(l), std::vector<Texto>{esperada}) << l;
  }
  EXPECT_GT(recusadas, 50);
  EXPECT_EQ(LerArquivo(boas), esperadas);
}
