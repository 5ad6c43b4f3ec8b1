#include <gtest/gtest.h>

#include <string>

#include "cli/simulacao.h"

namespace lumavox::cli {
namespace {

DataHora As(int hora, int minuto) { return MontarDataHora(2026, 3, 14, hora, minuto); }

// A run from 10:00 to 13:00 the test fills play by play.
struct Dia {
  Simulacao s;
  Dia() {
    s.inicio = As(10, 0);
    s.fim = As(13, 0);
  }
  Dia& Toca(int hora, int minuto, int32_t codigo, std::u16string artista, std::u16string titulo = u"",
            bool avancada = false) {
    TocadaSimulada t;
    t.momento = As(hora, minuto);
    t.codigo = codigo;
    t.artista = std::move(artista);
    t.titulo = titulo.empty() ? u"Faixa " + DeUtf8(std::to_string(codigo)) : std::move(titulo);
    t.avancada = avancada;
    s.tocadas.push_back(std::move(t));
    return *this;
  }
};

bool SoIguais(const Texto& a, const Texto& b) { return a == b; }

TEST(Figuras, TocadasContadasNaHoraEmQueComecaram) {
  Dia d;
  d.Toca(10, 0, 1, u"A").Toca(10, 59, 2, u"B", u"", true).Toca(11, 0, 3, u"C").Toca(12, 59, 4, u"D", u"", true);
  const Figuras f = CalcularFiguras(d.s, SoIguais);
  ASSERT_EQ(f.porHora.size(), 3u);
  EXPECT_EQ(f.porHora[0], std::make_pair(As(10, 0), 2L));
  EXPECT_EQ(f.porHora[1], std::make_pair(As(11, 0), 1L));
  EXPECT_EQ(f.porHora[2], std::make_pair(As(12, 0), 1L));
  EXPECT_EQ(f.avancadas, 2);
}

TEST(Figuras, MenorIntervaloEmMusicasEEmMinutosVemDeParesDiferentes) {
  Dia d;
  // X comes back two songs later but after 40 minutes; Z three songs later within 3 minutes.
  d.Toca(10, 0, 1, u"X").Toca(10, 2, 2, u"Y").Toca(10, 40, 3, u"X");
  d.Toca(10, 41, 4, u"Z").Toca(10, 42, 5, u"").Toca(10, 43, 6, u"").Toca(10, 44, 7, u"Z");
  const Figuras f = CalcularFiguras(d.s, SoIguais);
  ASSERT_TRUE(f.artista.musicas && f.artista.minutos);
  EXPECT_EQ(f.artista.musicas->valor, 2);  // two plays without artist never count as a repeat
  EXPECT_EQ(f.artista.musicas->quem, u"X");
  EXPECT_EQ(f.artista.musicas->de, As(10, 0));
  EXPECT_EQ(f.artista.musicas->ate, As(10, 40));
  EXPECT_EQ(f.artista.minutos->valor, 3);
  EXPECT_EQ(f.artista.minutos->quem, u"Z");
  EXPECT_FALSE(f.titulo.musicas || f.titulo.minutos);
}

TEST(Figuras, ArtistaPelaComparacaoDadaETituloSemCaixa) {
  Dia d;
  d.Toca(10, 0, 1, u"Ana", u"Luz").Toca(10, 5, 2, u"Bia", u"Mar").Toca(10, 9, 3, u"Ana feat Bia", u"LUZ");
  const Figuras f = CalcularFiguras(d.s, [](const Texto& a, const Texto& b) {
    return a.find(b) != Texto::npos || b.find(a) != Texto::npos;
  });
  ASSERT_TRUE(f.artista.musicas);
  EXPECT_EQ(f.artista.musicas->valor, 1);  // "Ana feat Bia" right after Bia
  EXPECT_EQ(f.artista.minutos->valor, 4);
  ASSERT_TRUE(f.titulo.musicas);
  EXPECT_EQ(f.titulo.musicas->valor, 2);
  EXPECT_EQ(f.titulo.musicas->quem, u"LUZ");
}

TEST(Figuras, MaisTocadasPorVezesEmpatesPorCodigo) {
  Dia d;
  d.Toca(10, 0, 30, u"C").Toca(10, 3, 20, u"B", u"Primeira").Toca(10, 6, 10, u"A").Toca(10, 9, 20, u"B", u"Outra");
  d.Toca(10, 12, 30, u"C").Toca(10, 15, 5, u"E");
  const Figuras f = CalcularFiguras(d.s, SoIguais, 3);
  ASSERT_EQ(f.maisTocadas.size(), 3u);
  EXPECT_EQ(f.maisTocadas[0].codigo, 20);
  EXPECT_EQ(f.maisTocadas[0].titulo, u"Primeira");  // named as it first aired
  EXPECT_EQ(f.maisTocadas[0].vezes, 2);
  EXPECT_EQ(f.maisTocadas[1].codigo, 30);
  EXPECT_EQ(f.maisTocadas[2].codigo, 5);
  EXPECT_EQ(f.maisTocadas[2].vezes, 1);
}

}  // namespace
}  // namespace lumavox::cli
