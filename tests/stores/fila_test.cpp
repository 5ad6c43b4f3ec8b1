#include "stores/fila.h"

#include <gtest/gtest.h>

#include <tuple>

namespace lumavox {
namespace {

TEST(Fila, NomesQueOMotorEscreveEOsOutros) {
  auto e = LerNomeFila("000007_0001234_050.lre");
  ASSERT_TRUE(e);
  EXPECT_EQ(std::tuple(e->contador, e->codigo, e->nivel, e->radical), std::tuple(7, 1234, 50, "000007"));
  // Past a million the counter keeps all its digits, and the media keeps the same stem.
  e = LerNomeFila("1000000_0000001_100.lre");
  ASSERT_TRUE(e);
  EXPECT_EQ(e->radical, "1000000");
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

}  // namespace
}  // namespace lumavox
