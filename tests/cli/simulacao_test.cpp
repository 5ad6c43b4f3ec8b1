#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "cli/curva_nivel.h"
#include "cli/simulacao.h"
#include "cli/simulacao_html.h"
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

// Two hours, three plays by an artist whose name would break the markup, which comes back once.
Simulacao DuasHoras() {
  Simulacao s;
  s.estacao = "/rádio & cia";
  s.inicio = MontarDataHora(2026, 3, 14, 8, 0);
  s.fim = MontarDataHora(2026, 3, 14, 10, 0);
  s.origemNivel = "fixo em 50";
  s.niveis = {{s.inicio, 50}};
  const Texto nomes[] = {u"<b>Ana</b> & \"Bia\"", u"Caio", u"<b>Ana</b> & \"Bia\""};
  for (int i = 0; i < 3; ++i) {
    TocadaSimulada t;
    t.momento = SomarSegundos(s.inicio, i * 90);
    t.codigo = 10 + i;
    t.artista = nomes[i];
    t.titulo = u"Faixa " + DeUtf8(std::to_string(i));
    s.tocadas.push_back(t);
  }
  s.regras[{0, 1, u"01"}] = {0, 1, u"01", u"<x>", 1, 0, 0, 0, 1, "falhou <aqui>"};
  s.avisos = {"fila <vazia>"};
  return s;
}

std::string Html(const Simulacao& s) {
  return SimulacaoHtml(s, CalcularFiguras(s, SoIguais));
}

TEST(SimulacaoHtml, TextoDaEstacaoEscapadoEmTodaParte) {
  const std::string html = Html(DuasHoras());
  for (const char* cru : {"<b>Ana", "<x>", "<aqui>", "<vazia>"}) EXPECT_EQ(html.find(cru), std::string::npos) << cru;
  EXPECT_NE(html.find("/rádio &amp; cia"), std::string::npos);
  EXPECT_NE(html.find("title='falhou &lt;aqui&gt;'"), std::string::npos);
  // The shortest repeat: two songs apart, three minutes.
  EXPECT_NE(html.find("<b>2 músicas</b><br><small>&lt;b&gt;Ana&lt;/b&gt; &amp; &quot;Bia&quot;: 08:00 e 08:03"),
            std::string::npos);
  EXPECT_NE(html.find("<td>nenhuma repetição</td>"), std::string::npos);  // titles never repeat
}

DataHora Dia14(int hora, int minuto) { return MontarDataHora(2026, 3, 14, hora, minuto); }

TEST(CurvaNivel, NivelDoUltimoPontoAteOMomentoEVoltaDaVespera) {
  // Out of order, with comments, blanks and two points at one time: the later line wins.
  const CurvaNivel c = LerCurvaNivel("# tarde\n18:00 70  # pico\n\n06:00 20\n12:00 40\n12:00 45\n", "dia.txt");
  ASSERT_EQ(c.pontos.size(), 4u);
  EXPECT_EQ(c.pontos.front().first, 6 * 3600);
  EXPECT_EQ(c.NivelEm(Dia14(5, 59)), 70);  // still last night's point
  EXPECT_EQ(c.NivelEm(Dia14(6, 0)), 20);
  EXPECT_EQ(c.NivelEm(Dia14(11, 59)), 20);
  EXPECT_EQ(c.NivelEm(Dia14(12, 0)), 45);
  EXPECT_EQ(c.NivelEm(Dia14(23, 59)), 70);
}

TEST(CurvaNivel, LinhaQueNaoLeDizArquivoENumero) {
  for (const std::string ruim : {"24:00 10", "7h 30", "06:60 10", "06:00", "06:00 10 20", "06:00 101", "06:00 -1",
                                 "06:00 5,5", "06:00 alto"}) {
    try {
      LerCurvaNivel("# cabeçalho\n05:00 10\n" + ruim + "\n", "dia.txt");
      ADD_FAILURE() << ruim;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ(std::string(e.what()).rfind("dia.txt:3: ", 0), 0u) << e.what();
    }
  }
  EXPECT_THROW(LerCurvaNivel("# só comentário\n\n", "vazia.txt"), std::runtime_error);
}

}  // namespace
}  // namespace lumavox::cli
