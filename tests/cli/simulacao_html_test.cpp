#include <gtest/gtest.h>

#include <string>

#include "cli/formato_html.h"
#include "cli/graficos_svg.h"
#include "cli/simulacao_html.h"

namespace lumavox::cli {
namespace {

size_t Contar(const std::string& texto, const std::string& parte) {
  size_t n = 0;
  for (size_t p = texto.find(parte); p != std::string::npos; p = texto.find(parte, p + 1)) ++n;
  return n;
}

// Two hours, three plays (one skipped) by an artist whose name would break the markup, which
// comes back once.
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
    t.vibe = 5.5;
    t.avancada = i == 1;
    s.tocadas.push_back(t);
  }
  s.regras[{0, 1, u"01"}] = {0, 1, u"01", u"<x>", 1, 0, 0, 0, 1, "falhou <aqui>"};
  s.avisos = {"fila <vazia>"};
  return s;
}

TEST(SimulacaoHtml, TextoDaEstacaoEscapadoEmTodaParte) {
  const Simulacao s = DuasHoras();
  const std::string html = SimulacaoHtml(s, CalcularFiguras(s, [](const Texto& a, const Texto& b) { return a == b; }));
  EXPECT_EQ(html.find("<b>Ana"), std::string::npos);
  EXPECT_EQ(html.find("<x>"), std::string::npos);
  EXPECT_EQ(html.find("<aqui>"), std::string::npos);
  EXPECT_EQ(html.find("<vazia>"), std::string::npos);
  EXPECT_NE(html.find("/rádio &amp; cia"), std::string::npos);
  EXPECT_NE(html.find("title='falhou &lt;aqui&gt;'"), std::string::npos);
  // The shortest repeat: two songs apart, three minutes.
  EXPECT_NE(html.find("<b>2 músicas</b><br><small>&lt;b&gt;Ana&lt;/b&gt; &amp; &quot;Bia&quot;: 08:00 e 08:03"),
            std::string::npos);
  EXPECT_NE(html.find("<b>3,0 min</b>"), std::string::npos);
  EXPECT_NE(html.find("<td>nenhuma repetição</td>"), std::string::npos);  // titles never repeat
}

TEST(GraficosSvg, UmPontoPorTocadaEUmaBarraPorHora) {
  const Simulacao s = DuasHoras();
  const std::string vibe = GraficoVibe(s);
  EXPECT_EQ(Contar(vibe, "<circle"), 3u);
  EXPECT_EQ(Contar(vibe, "class='avancada'"), 1u);
  EXPECT_NE(vibe.find("(vibe 5,5, nível 0)"), std::string::npos);
  const std::string barras = GraficoPorHora(CalcularFiguras(s, [](const Texto&, const Texto&) { return false; }));
  EXPECT_EQ(Contar(barras, "<rect"), 2u);
  EXPECT_NE(barras.find("<title>08:00: 3</title>"), std::string::npos);
}

TEST(FormatoHtml, EntidadesVirgulaEHora) {
  EXPECT_EQ(EscaparHtml("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c'");
  EXPECT_EQ(NumeroComVirgula(7.5), "7,5");
  EXPECT_EQ(NumeroComVirgula(1234.5, 2), "1234,50");
  EXPECT_EQ(NumeroComVirgula(3, 0), "3");
  EXPECT_EQ(HoraMinuto(MontarDataHora(2026, 3, 14, 8, 5, 59)), "08:05");
}

}  // namespace
}  // namespace lumavox::cli
