#include "rules/tags.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "base/erro.h"

using namespace lumavox;

namespace {

constexpr int16_t kArtista = 0, kGenero = 5, kNota = 8, kTipo = 10, kVibe = 32;

class Tags : public ::testing::Test {
 protected:
  std::unique_ptr<Estado> e = std::make_unique<Estado>();

  void Tag(long slot, int16_t campo, std::u16string_view valor) {
    e->CarregarAcervo([&](Acervo& a) {
      a.AcervoTags.Definir(slot, campo, Texto(valor));
      if (slot >= a.TotalMusicas) a.TotalMusicas = static_cast<int16_t>(slot + 1);
    });
  }
  bool Confere(std::u16string_view filtro, int16_t campo, std::u16string_view tag) {
    Tag(0, campo, tag);
    return ConferirTag(*e, filtro, 0);
  }
};

TEST(FiltroDeTag, NomeValorEGeral) {
  const std::pair<std::u16string_view, int16_t> campos[] = {
      {u"Title:X", 2}, {u"Vibe:5", 32}, {u"Faixa Etária:10", 23},  // field 3 cannot be named
      {u"Faixa Etária:10:20", kCampoDesconhecido}, {u"genero:Rock", kCampoDesconhecido},  // names compare exactly
      {u":Rock", kCampoDesconhecido}};
  for (const auto& [filtro, campo] : campos) EXPECT_EQ(IndiceCampo(filtro), campo) << ParaUtf8(filtro);
  EXPECT_EQ(ValorDoFiltro(u"Faixa Etária:10:20"), u"20");
}

TEST_F(Tags, ConferirTagPorCampo) {
  const std::tuple<const char16_t*, int16_t, const char16_t*, bool> casos[] = {
      {u"Genero:Rock", kGenero, u"Pop;ROCK", true},    {u"Genero: Rock", kGenero, u"Rock", false},
      {u"Genero:Rock;Pop", kGenero, u"Pop", true},     {u"Genero:Ópera", kGenero, u"óPERA", true},
      // One-character tags and trailing pieces are never compared, on either side.
      {u"Nota:5", kNota, u"5", false}, {u"Tipo:Rock;A", kTipo, u"A", false}, {u"Tipo:A;Rock", kTipo, u"A;", true},
      // Vibe compares as a number within half a point.
      {u"Vibe:10", kVibe, u"9,5", true}, {u"Vibe:10", kVibe, u"10,6", false},
      {u"Artista:bia", kArtista, u"Ana FEAT. Bia", true}, {u"", kGenero, u"Rock", true},
      {u"Artista:Ana", kArtista, u"Ana, Bia", false},  {u"Artista:Ana", kArtista, u"Ana;Bia", false},
      {u"Genero:Geral*", kGenero, u"", true},          {u"Cor:Azul", kGenero, u"Azul", false},
  };
  for (const auto& [filtro, campo, tag, confere] : casos)
    EXPECT_EQ(Confere(filtro, campo, tag), confere) << ParaUtf8(filtro) << " / " << ParaUtf8(tag);
  // Accepting filters never read the tag, so the slot is not checked.
  EXPECT_TRUE(ConferirTag(*e, u"Genero:Geral*", 9000));
  EXPECT_THROW(ConferirTag(*e, u"Genero:Rock", 4001), ErroExecucao);
  // The artist form compares whole values first, so one-character values can match there.
  Tag(0, kNota, u"5");
  EXPECT_TRUE(ConferirTagArtista(*e, u"Nota:5", 0));
  EXPECT_FALSE(ConferirPedaco(u"abc", u"1,5", kVibe));  // text counts as 0
}

TEST_F(Tags, CompararArtistasPorModo) {
  const std::tuple<int16_t, const char16_t*, const char16_t*, int16_t, bool> casos[] = {
      {0, u"Ana featuring Bia vs. Caio", u"Caio & Duda", kArtista, true},
      {0, u"Ana,Bia", u"Bia", kArtista, false},    {0, u"Ana & B", u"B", kArtista, false},
      {0, u"", u"", kArtista, false},              {0, u"A", u"a", kArtista, true},  // whole value
      // A separator is taken at its position only when nothing of it is reused.
      {0, u"Ana & & Bia", u"Bia", kArtista, false}, {0, u"Ana & & Bia", u"& Bia", kArtista, true},
      {0, u"Pop;Rock", u"Pop;Jazz", kGenero, false}, {0, u"Rock;Pop", u"Jazz;Pop", kGenero, true},
      {1, u"Ana feat Bia", u"Bia & Ana", kArtista, true}, {1, u"Ana feat Bia", u"Bia", kArtista, false},
      {1, u"Pop;Rock", u"Rock;Jazz", kGenero, true},  // the skipped Pop cannot miss
      {2, u"Ana", u"Bia", kArtista, true},         {-1, u"Ana feat Bia", u"Bia", kArtista, false},
  };
  for (const auto& [modo, a, b, campo, iguais] : casos) {
    e->selecao.ModoComparacaoArtista = modo;
    EXPECT_EQ(CompararArtistas(*e, a, b, campo), iguais) << modo << ": " << ParaUtf8(a) << " / " << ParaUtf8(b);
  }
}

TEST_F(Tags, MesmoValorTagESlots) {
  const std::pair<long, const char16_t*> generos[] = {{1, u"Rock"}, {2, u"ROCK"}, {3, u"Jazz;Rock"}, {6, u"Jazz"}, {4000, u"Rock"}};
  for (const auto& [slot, genero] : generos) Tag(slot, kGenero, genero);
  const std::tuple<int16_t, long, long, bool> casos[] = {{kGenero, 1, 2, true}, {kGenero, 3, 1, true},
      {kGenero, 6, 1, false}, {kGenero, 4, 5, false} /* both empty */, {kGenero, 1, 4000, false},
      {kCampoDesconhecido, 1, 2, false}};
  for (const auto& [campo, a, b, mesmo] : casos) EXPECT_EQ(MesmoValorTag(*e, campo, a, b), mesmo) << a << " " << b;
  EXPECT_TRUE(CompararArtistasSlots(*e, 1, 4000, kGenero));
  EXPECT_THROW(MesmoValorTag(*e, kGenero, -1, 2), ErroExecucao);
  EXPECT_THROW(CompararArtistasSlots(*e, 1, 2, 33), ErroExecucao);
}

// Tags rewritten in place, or a whole table put in place of another, are never answered from an
// earlier prepared form.
TEST_F(Tags, CacheAcompanhaTagsReescritas) {
  Tag(0, kArtista, u"Ana feat Bia");
  Tag(1, kArtista, u"Bia");
  EXPECT_TRUE(CompararArtistasSlots(*e, 0, 1, kArtista));
  Tag(1, kArtista, u"Cid");  // same length, same place
  EXPECT_FALSE(CompararArtistasSlots(*e, 0, 1, kArtista));
  auto Nota = [&] { return e->cacheTags.Valores(kNota, e->acervo().AcervoTags)[2]; };
  Tag(2, kNota, u"7");
  EXPECT_EQ(Nota(), 7);
  Tag(2, kNota, u" 3,5");
  EXPECT_EQ(Nota(), 3.5);

  Tag(0, kGenero, u"Punk");
  const TagsAcervo antes = e->acervo().AcervoTags;
  Tag(0, kGenero, u"Rock");
  EXPECT_TRUE(ConferirTag(*e, u"Genero:Rock", 0));
  e->CarregarAcervo([&](Acervo& a) { a.AcervoTags = antes; });
  EXPECT_FALSE(ConferirTag(*e, u"Genero:Rock", 0));
}

// Gathered values (rule 02's window) answer as MesmoValorTag with each song gathered: a leading
// "Pop" is skipped on both sides, a trailing one is compared.
TEST_F(Tags, ValoresOuvidosComoMesmoValorTag) {
  const std::u16string_view textos[] = {u"Rock;Pop", u"Pop;Jazz", u"Pop;Rock", u"ROCK", u"Jazz;Pop", u""};
  for (long i = 0; i < 6; ++i) Tag(i, kGenero, textos[i]);
  ValoresOuvidos ouvidos;
  ouvidos.Adicionar(*e, kGenero, 0);
  for (long s = 1; s < 6; ++s)
    EXPECT_EQ(ouvidos.Compartilha(*e, kGenero, s), MesmoValorTag(*e, kGenero, s, 0)) << s;
  EXPECT_FALSE(ouvidos.Compartilha(*e, kGenero, 1));  // Pop;Jazz: only Jazz counts
}

}  // namespace
