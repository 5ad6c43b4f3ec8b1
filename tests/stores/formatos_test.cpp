// Exact values of the small station formats: the line code (round trips and lone surrogates are
// the fuzz target's business), queue entry names, audio formats and rhythm words.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "apoio/estacao.h"
#include "base/erro.h"
#include "stores/codec.h"
#include "stores/fila.h"
#include "stores/ritmo.h"

namespace lumavox {
namespace {

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
  // Every digit at every weight, groups each side of the surrogates and of 65535, and a byte
  // just outside the digits at each place of a line.
  std::vector<std::string> linhas = {"0123450678900065", "0552950006557344655350", "05529600065",
                                     "05734300065", "06553600065", "0999990006500066"};
  const std::string base = "000065000660";
  for (size_t pos = 1; pos < base.size(); ++pos)
    for (char c : {'/', ':', ' ', '.', 'x', '-', '+', 'E', '&', '\x7f'})
      linhas.push_back(std::string(base).replace(pos, 1, 1, c));
  teste::EstacaoTeste estacao;
  auto LerArquivo = [&](const std::string& conteudo) {
    estacao.GravarTexto("x.rdb", conteudo);
    std::vector<Texto> lidas;
    ParaCadaLinhaCodificada(ArquivosReais(), estacao.Caminho("x.rdb"), [&](Texto&& t) { lidas.push_back(t); });
    return lidas;
  };
  std::string boas;
  std::vector<Texto> esperadas;
  for (const std::string& l : linhas) {
    Texto esperada;
    const std::optional<CodigoErro> erro = teste::ErroDe([&] { esperada = DecodificarLinha(DeUtf8(l)); });
    if (erro) {
      for (const std::string& fim : {std::string(), std::string("\n00065")})
        EXPECT_EQ(teste::ErroDe([&] { LerArquivo(l + fim); }), erro) << l;
      continue;
    }
    boas += l + "\n";
    esperadas.push_back(esperada);
    ASSERT_EQ(LerArquivo(l), std::vector<Texto>{esperada}) << l;
  }
  EXPECT_EQ(LerArquivo(boas), esperadas);
}

TEST(Fila, NomesQueOMotorEscreveEOsOutros) {
  const EntradaFila e = LerNomeFila("000007_0001234_050.lre").value();
  EXPECT_EQ(std::tie(e.contador, e.codigo, e.nivel, e.radical), std::tuple(7, 1234, 50, "000007"));
  // Past a million the counter keeps all its digits, and the media keeps the same stem.
  EXPECT_EQ(LerNomeFila("1000000_0000001_100.lre").value().radical, "1000000");
  for (const char* nome : {"000007_0001234.lre", "000007_0001234_050_1.lre", "000007_12a4_050.lre",
                           "000007_0001234_050.lre.parcial", "000007_-1234_050.lre"})
    EXPECT_FALSE(LerNomeFila(nome)) << nome;
}

TEST(Fila, FormatoDoAudioPelosPrimeirosBytes) {
  using namespace std::string_literals;
  const std::pair<std::string, const char*> casos[] = {
      {"OggS\0\2"s, ".ogg"},   {"fLaC\0\0\0\42"s, ".flac"},     {"RIFF\x24\0\0\0WAVEfmt "s, ".wav"},
      {"\0\0\0\x20" "ftypM4A "s, ".m4a"}, {"ID3\4\0"s, ".mp3"}, {"\xFF\xFB\x90\x64"s, ".mp3"},
      {"RIFF\x24\0\0\0AVI "s, ".bin"},    {"Og", ".bin"}};
  for (const auto& [bytes, extensao] : casos) EXPECT_EQ(ExtensaoDoAudio(bytes), extensao) << extensao;
}

TEST(ValorRitmo, NumerosTextosFixosEListasDePalavras) {
  const std::pair<std::u16string_view, double> casos[] = {
      {u"7,5", 7.5}, {u"", 0}, {u"Rápida;", 9}, {u"Normal;Rápida;", 7}, {u"Lenta;Normal;", 3},
      {u"Nacional", -1}, {u"Internacional", 1}, {u"Normal;Calmo;", 3}, {u"Sexy;Relax;", 0},
      {u"rápida;", 0}, {u"Rápida;Lenta;", 0},  // fixed texts match only whole and as spelt
      {u"Calmo;Animado;Sexy;", 6}, {u"Calmo;Animado", 1},  // text after the last ";" is no word
      {u"Animado;Animado;Calmo;", 19.0 / 3}, {u"Sexy;Animado;", 10},  // mood is added after averaging
      {u";;Normal;;", 5}, {u"Pra Baixo;Romântico;Comedia;", -3}, {u"calmo;sexy;Normal ;", 0}, {u"Nacional;", 0}};
  for (const auto& [texto, valor] : casos) EXPECT_EQ(ValorRitmo(texto), valor) << ParaUtf8(texto);
}

}  // namespace
}  // namespace lumavox
