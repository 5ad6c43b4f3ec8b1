#include <gtest/gtest.h>

#include <string>

#include "cli/simulacao.h"
#include "cli/simulacao_json.h"

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

TEST(Figuras, TocadasPorHoraPorMusicaEMaisTocadas) {
  Dia d;
  d.s.acervo = {{40, u"D", u"Quatro"}, {10, u"A", u""}, {30, u"C", u"Três"}, {20, u"B", u""}};
  d.Toca(10, 0, 30, u"C").Toca(10, 59, 20, u"B", u"Primeira", true).Toca(11, 0, 5, u"E");
  d.Toca(11, 9, 20, u"B", u"Outra").Toca(12, 59, 30, u"C", u"", true).Toca(12, 59, 7, u"F");
  const Figuras f = CalcularFiguras(d.s, SoIguais, 3);
  // Each play counts in the hour it started.
  EXPECT_EQ(f.porHora, (std::vector<std::pair<DataHora, long>>{{As(10, 0), 2}, {As(11, 0), 2}, {As(12, 0), 2}}));
  EXPECT_EQ(f.avancadas, 2);
  // Ties by code; a song is named as it first aired.
  ASSERT_EQ(f.maisTocadas.size(), 3u);
  EXPECT_EQ(f.maisTocadas[0].codigo, 20);
  EXPECT_EQ(f.maisTocadas[0].titulo, u"Primeira");
  EXPECT_EQ(f.maisTocadas[0].vezes, 2);
  EXPECT_EQ(f.maisTocadas[1].codigo, 30);
  EXPECT_EQ(f.maisTocadas[2].codigo, 5);
  // How many songs played each number of times; the never played named as the collection has them.
  EXPECT_EQ(f.musicasPorVezes, (std::vector<long>{2, 2, 2}));
  ASSERT_EQ(f.nuncaTocadas.size(), 2u);
  EXPECT_EQ(f.nuncaTocadas[0].codigo, 10);
  EXPECT_EQ(f.nuncaTocadas[1].titulo, u"Quatro");
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

// What the JSON report leaves out or writes as null: a repeat that never happened, an error
// only when a rule had one.
TEST(SimulacaoJson, RepeticaoAusenteNulaErroSoQuandoHouve) {
  Dia d;
  d.Toca(8, 0, 100, u"A", u"Canção").Toca(8, 30, 101, u"B", u"Canção");
  d.s.regras[{0, 1, u"01"}] = {0, 1, u"01", u"", 3, 1, 0, 0, 0, ""};
  d.s.regras[{0, 2, u"15"}] = {0, 2, u"15", u"", 0, 0, 0, 0, 2, "Erro 6: estouro"};
  const nlohmann::ordered_json j = SimulacaoJson(d.s, CalcularFiguras(d.s, SoIguais));
  EXPECT_TRUE(j["menor_intervalo"]["artista"]["musicas"].is_null());
  EXPECT_EQ(j["menor_intervalo"]["titulo"]["minutos"]["valor"], 30.0);
  EXPECT_EQ(j["menor_intervalo"]["titulo"]["minutos"]["quem"], "Canção");
  EXPECT_FALSE(j["regras"][0].contains("ultimo_erro"));
  EXPECT_EQ(j["regras"][1]["ultimo_erro"], "Erro 6: estouro");
}

}  // namespace
}  // namespace lumavox::cli
