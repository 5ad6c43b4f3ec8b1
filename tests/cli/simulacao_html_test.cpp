#include <gtest/gtest.h>

#include <string>

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
  for (const char* cru : {"<b>Ana", "<x>", "<aqui>", "<vazia>"}) EXPECT_EQ(html.find(cru), std::string::npos) << cru;
  EXPECT_NE(html.find("/rádio &amp; cia"), std::string::npos);
  EXPECT_NE(html.find("title='falhou &lt;aqui&gt;'"), std::string::npos);
  // The shortest repeat: two songs apart, three minutes.
  EXPECT_NE(html.find("<b>2 músicas</b><br><small>&lt;b&gt;Ana&lt;/b&gt; &amp; &quot;Bia&quot;: 08:00 e 08:03"),
            std::string::npos);
  EXPECT_NE(html.find("<b>3,0 min</b>"), std::string::npos);
  EXPECT_NE(html.find("<td>nenhuma repetição</td>"), std::string::npos);  // titles never repeat
}

TEST(SimulacaoHtml, ConferenciaNaPrimeiraPaginaPorArquivoESoQuandoAchouAlgo) {
  Simulacao s = DuasHoras();
  const auto Figuras = [&] {
    return CalcularFiguras(s, [](const Texto& a, const Texto& b) { return a == b; });
  };
  EXPECT_EQ(SimulacaoHtml(s, Figuras()).find("Conferência da estação"), std::string::npos);
  s.conferencia = {{NivelConstatacao::Erro, "lxdb.rdb", std::nullopt, "só <5> músicas"},
                   {NivelConstatacao::Aviso, "pl.rdb", 1, "linha ignorada"},
                   {NivelConstatacao::Aviso, "pl.rdb", 2, "outra"}};
  const std::string html = SimulacaoHtml(s, Figuras());
  const size_t secao = html.find("<h2 id='conferencia'>Conferência da estação</h2>");
  ASSERT_NE(secao, std::string::npos);
  EXPECT_LT(secao, html.find("<h2>Vibe"));
  EXPECT_EQ(Contar(html, "<h3><code>pl.rdb</code></h3>"), 1u);
  EXPECT_NE(html.find("<li class='erro'><b>erro</b>: só &lt;5&gt; músicas</li>"),
            std::string::npos);
  EXPECT_NE(html.find("<li><b>aviso</b>, linha 2: outra</li>"), std::string::npos);
}

TEST(GraficosSvg, UmPontoPorTocadaMasUmMesFicaLeve) {
  Simulacao s = DuasHoras();
  const std::string dia = GraficoVibe(s);
  EXPECT_EQ(Contar(dia, "<circle"), 3u);
  EXPECT_EQ(Contar(dia, "class='avancada'"), 1u);

  s.fim = SomarSegundos(s.inicio, 720 * 3600);
  s.tocadas.resize(12000, s.tocadas[0]);
  for (size_t i = 0; i < s.tocadas.size(); ++i)
    s.tocadas[i].momento = SomarSegundos(s.inicio, i * 216);
  const std::string vibe = GraficoVibe(s);
  EXPECT_EQ(Contar(vibe, "<circle"), 0u);
  EXPECT_EQ(Contar(vibe, "class='faixa'"), 1u);
  EXPECT_LT(vibe.size(), 40000u);
  // Thirty days of hourly bars: no count over each bar, one date mark a day or two.
  const std::string barras =
      GraficoPorHora(CalcularFiguras(s, [](const Texto&, const Texto&) { return false; }));
  EXPECT_EQ(Contar(barras, "<rect"), 720u);
  EXPECT_LE(Contar(barras, "<text"), 31u);
}

TEST(GraficosSvg, MusicaPresaNoArNaoEspremeAsOutrasNaPrimeiraBarra) {
  Figuras f;
  f.musicasPorVezes.assign(2264, 0);
  f.musicasPorVezes[0] = 1238;
  for (size_t n = 1; n <= 40; ++n) f.musicasPorVezes[n] = 69;
  f.musicasPorVezes[2263] = 1;
  const std::string svg = GraficoVezes({{"", &f}});
  EXPECT_EQ(Contar(svg, "<rect"), 42u);  // 0 to 40 one bar each, then the rest
  EXPECT_NE(svg.find("<title>1 músicas tocaram ≥ 41 vezes</title>"), std::string::npos);
}

TEST(GraficosSvg, NegadasNaColunaDaHoraDoDia) {
  Simulacao s = DuasHoras();
  s.regras.begin()->second.negadaPorHora[23] = 7;
  const std::string mapa = GraficoNegadasPorHora(s);
  EXPECT_EQ(Contar(mapa, "<rect"), 24u);
  EXPECT_NE(mapa.find("23h: 7 negadas"), std::string::npos);
}

TEST(SimulacaoHtml, AlternativaLadoALadoComADiferenca) {
  const Simulacao s = DuasHoras();
  Simulacao outra = DuasHoras();
  outra.tocadas.pop_back();
  auto Igual = [](const Texto& a, const Texto& b) { return a == b; };
  const Figuras f = CalcularFiguras(s, Igual), g = CalcularFiguras(outra, Igual);
  const Alternativa a{outra, g, "menos <regras>.toml"};
  const std::string html = SimulacaoHtml(s, f, &a);
  EXPECT_NE(html.find("<tr><th>músicas tocadas</th><td class='n'>3</td><td class='n'>2</td><td "
                      "class='n'>-1</td>"),
            std::string::npos);
  EXPECT_EQ(html.find("<regras>"), std::string::npos);
  EXPECT_EQ(Contar(html, "<th>removeu músicas</th>"), 2u);  // both rules tables
  EXPECT_EQ(SimulacaoHtml(s, f).find("menos &lt;regras&gt;"), std::string::npos);
}

}  // namespace
}  // namespace lumavox::cli
