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

using J = nlohmann::ordered_json;

DataHora As(int hora, int minuto) { return MontarDataHora(2026, 3, 14, hora, minuto); }

// Each play has a title of its own, so titles never repeat.
void Toca(Simulacao& s, int hora, int minuto, int32_t codigo, std::u16string artista) {
  const Texto titulo = u"Faixa " + DeUtf8(std::to_string(codigo));
  s.tocadas.push_back({As(hora, minuto), codigo, 0, 0, std::move(artista), titulo, false, -1, {}});
}

// X comes back two songs later but after 40 minutes, Z three songs later within 3 minutes: the two
// shortest repeats come from different pairs, and plays without artist never count as one. X's
// name would break the markup, and of two rules only one failed. The JSON writes a repeat that
// never happened as null and an error only when there was one; the HTML escapes the station's
// text everywhere.
TEST(SimulacaoRelatorios, MenoresIntervalosEmParesDiferentesNulosEHtmlEscapado) {
  Simulacao s;
  s.inicio = As(10, 0);
  s.fim = As(13, 0);
  const std::u16string x = u"<b>Ana</b> & \"Bia\"";
  for (const auto& [minuto, artista] : std::initializer_list<std::pair<int, std::u16string>>{
           {0, x}, {2, u"Y"}, {40, x}, {41, u"Z"}, {42, u""}, {43, u""}, {44, u"Z"}})
    Toca(s, 10, minuto, static_cast<int32_t>(s.tocadas.size() + 1), artista);
  s.regras[{0, 1, u"01"}] = {0, 1, u"01", u"<x>", 1, 0, 0, 0, 1, "falhou <aqui>"};
  s.regras[{0, 2, u"15"}] = {0, 2, u"15", u"", 3, 1, 0, 0, 0, ""};
  s.avisos = {"fila <vazia>"};
  const Figuras f = CalcularFiguras(s, [](const Texto& a, const Texto& b) { return a == b; });
  const nlohmann::ordered_json j = SimulacaoJson(s, f);
  const auto& minutos = j["menor_intervalo"]["artista"]["minutos"];
  EXPECT_EQ(J::array({j["menor_intervalo"]["titulo"]["musicas"], minutos["valor"], minutos["quem"],
                      j["regras"][0]["ultimo_erro"], j["regras"][1].contains("ultimo_erro")}),
            J::array({nullptr, 3.0, "Z", "falhou <aqui>", false}));

  const std::string html = SimulacaoHtml(s, f);
  for (const char* cru : {"<b>Ana", "<x>", "<aqui>", "<vazia>"}) EXPECT_EQ(html.find(cru), std::string::npos) << cru;
  EXPECT_NE(html.find("<b>2 músicas</b><br><small>&lt;b&gt;Ana&lt;/b&gt; &amp; &quot;Bia&quot;: 10:00 e 10:40"),
            std::string::npos);
}

TEST(CurvaNivel, NivelDoUltimoPontoAteOMomentoEVoltaDaVesperaELinhaRuimDizArquivoENumero) {
  // Out of order, with comments, blanks and two points at one time: the later line wins.
  const CurvaNivel c = LerCurvaNivel("# tarde\n18:00 70  # pico\n\n06:00 20\n12:00 40\n12:00 45\n", "dia.txt");
  // Before the first point of the day, last night's point still holds.
  for (const auto& [hora, minuto, nivel] : {std::tuple{5, 59, 70}, {6, 0, 20}, {11, 59, 20}, {12, 0, 45}, {23, 59, 70}})
    EXPECT_EQ(c.NivelEm(As(hora, minuto)), nivel) << hora << ":" << minuto;

  // Out of the day, out of the level range, a missing or an extra field.
  for (const std::string ruim :
       {"24:00 10", "06:60 10", "06:00", "06:00 10 20", "06:00 101", "06:00 -1"}) {
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
