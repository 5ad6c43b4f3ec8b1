#include "stores/fila.h"

#include <gtest/gtest.h>

namespace lumavox {
namespace {

TEST(Fila, NomesQueOMotorEscreveEOsOutros) {
  auto e = LerNomeFila("000007_0001234_050.lre");
  ASSERT_TRUE(e);
  EXPECT_EQ(e->contador, 7);
  EXPECT_EQ(e->codigo, 1234);
  EXPECT_EQ(e->nivel, 50);
  EXPECT_EQ(e->radical, "000007");
  // Past a million the counter keeps all its digits, and the media keeps the same stem.
  e = LerNomeFila("1000000_0000001_100.lre");
  ASSERT_TRUE(e);
  EXPECT_EQ(e->contador, 1000000);
  EXPECT_EQ(e->radical, "1000000");
  for (const char* nome : {"000007_0001234.lre", "000007_0001234_050_1.lre", "000007_12a4_050.lre", "_1_2.lre",
                           "000007_0001234_050.lre.parcial", "000007_0001234_050.mrt", "000007_-1234_050.lre"})
    EXPECT_FALSE(LerNomeFila(nome)) << nome;
}

TEST(Fila, FormatoDoAudioPelosPrimeirosBytes) {
  using namespace std::string_literals;
  EXPECT_EQ(ExtensaoDoAudio("OggS\0\2"s), ".ogg");
  EXPECT_EQ(ExtensaoDoAudio("fLaC\0\0\0\42"s), ".flac");
  EXPECT_EQ(ExtensaoDoAudio("RIFF\x24\0\0\0WAVEfmt "s), ".wav");
  EXPECT_EQ(ExtensaoDoAudio("\0\0\0\x20" "ftypM4A "s), ".m4a");
  EXPECT_EQ(ExtensaoDoAudio("ID3\4\0"s), ".mp3");
  EXPECT_EQ(ExtensaoDoAudio("\xFF\xFB\x90\x64"s), ".mp3");
  EXPECT_EQ(ExtensaoDoAudio("RIFF\x24\0\0\0AVI "s), ".bin");
  EXPECT_EQ(ExtensaoDoAudio(""), ".bin");
  EXPECT_EQ(ExtensaoDoAudio("Og"), ".bin");
}

}  // namespace
}  // namespace lumavox
