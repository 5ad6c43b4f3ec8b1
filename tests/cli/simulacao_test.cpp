#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <tuple>

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
  // Each play has a title of its own, so titles never repeat.
  Dia& Toca(int hora, int minuto, int32_t codigo, std::u16string artista) {
    TocadaSimulada t;
    t.momento = As(hora, minuto);
    t.codigo = codigo;
    t.artista = std::move(artista);
    t.titulo = u"Faixa " + DeUtf8(std::to_string(codigo));
    s.tocadas.push_back(std::move(t));
    return *this;
  }
};

bool SoIguais(const Texto& a, const Texto& b) { return a == b; }

// X comes back two songs later but after 40 minutes, Z three songs later within 3 minutes: the two
// shortest repeats come from different pairs, and plays without artist never count as one. X's
// name would break the markup, and of two rules only one failed. The JSON writes a repeat that
// never happened as null and an error only when there was one; the HTML escapes the station's
// text everywhere.
TEST(SimulacaoRelatorios, MenoresIntervalosEmParesDiferentesNulosEHtmlEscapado) {
  Dia d;
  const std::u16string x = u"<b>Ana</b> & \"Bia\"";
  d.Toca(10, 0, 1, x).Toca(10, 2, 2, u"Y").Toca(10, 40, 3, x);
  d.Toca(10, 41, 4, u"Z").Toca(10, 42, 5, u"").Toca(10, 43, 6, u"").Toca(10, 44, 7, u"Z");
  d.s.estacao = "/rádio & cia";
  d.s.origemNivel = "fixo em 50";
  d.s.niveis = {{d.s.inicio, 50}};
  d.s.regras[{0, 1, u"01"}] = {0, 1, u"01", u"<x>", 1, 0, 0, 0, 1, "falhou <aqui>"};
  d.s.regras[{0, 2, u"15"}] = {0, 2, u"15", u"", 3, 1, 0, 0, 0, ""};
  d.s.avisos = {"fila <vazia>"};
  const Figuras f = CalcularFiguras(d.s, SoIguais);
  const nlohmann::ordered_json j = SimulacaoJson(d.s, f);
  EXPECT_TRUE(j["menor_intervalo"]["titulo"]["musicas"].is_null());
  EXPECT_EQ(j["menor_intervalo"]["artista"]["minutos"]["valor"], 3.0);
  EXPECT_EQ(j["menor_intervalo"]["artista"]["minutos"]["quem"], "Z");
  EXPECT_EQ(j["regras"][0]["ultimo_erro"], "falhou <aqui>");
  EXPECT_FALSE(j["regras"][1].contains("ultimo_erro"));

  const std::string html = SimulacaoHtml(d.s, f);
  for (const char* cru : {"<b>Ana", "<x>", "<aqui>", "<vazia>"}) EXPECT_EQ(html.find(cru), std::string::npos) << cru;
  EXPECT_NE(html.find("/rádio &amp; cia"), std::string::npos);
  EXPECT_NE(html.find("title='falhou &lt;aqui&gt;'"), std::string::npos);
  EXPECT_NE(html.find("<b>2 músicas</b><br><small>&lt;b&gt;Ana&lt;/b&gt; &amp; &quot;Bia&quot;: 10:00 e 10:40"),
            std::string::npos);
  EXPECT_NE(html.find("<td>nenhuma repetição</td>"), std::string::npos);  // titles never repeat
}

TEST(CurvaNivel, NivelDoUltimoPontoAteOMomentoEVoltaDaVespera) {
  // Out of order, with comments, blanks and two points at one time: the later line wins.
  const CurvaNivel c = LerCurvaNivel("# tarde\n18:00 70  # pico\n\n06:00 20\n12:00 40\n12:00 45\n", "dia.txt");
  ASSERT_EQ(c.pontos.size(), 4u);
  EXPECT_EQ(c.pontos.front().first, 6 * 3600);
  // Before the first point of the day, last night's point still holds.
  for (const auto& [hora, minuto, nivel] : {std::tuple{5, 59, 70}, {6, 0, 20}, {11, 59, 20}, {12, 0, 45}, {23, 59, 70}})
    EXPECT_EQ(c.NivelEm(As(hora, minuto)), nivel) << hora << ":" << minuto;
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
