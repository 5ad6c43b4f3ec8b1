#include <gtest/gtest.h>

#include <string>

#include "cli/simulacao_html.h"

namespace lumavox::cli {
namespace {

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
  return SimulacaoHtml(s, CalcularFiguras(s, [](const Texto& a, const Texto& b) { return a == b; }));
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

TEST(SimulacaoHtml, ConferenciaNaPrimeiraPaginaPorArquivoESoQuandoAchouAlgo) {
  Simulacao s = DuasHoras();
  EXPECT_EQ(Html(s).find("Conferência da estação"), std::string::npos);
  s.conferencia = {{NivelConstatacao::Erro, "lxdb.rdb", std::nullopt, "só <5> músicas"},
                   {NivelConstatacao::Aviso, "pl.rdb", 1, "linha ignorada"},
                   {NivelConstatacao::Aviso, "pl.rdb", 2, "outra"}};
  const std::string html = Html(s);
  const size_t secao = html.find("<h2 id='conferencia'>Conferência da estação</h2>");
  ASSERT_NE(secao, std::string::npos);
  EXPECT_LT(secao, html.find("<h2>Vibe"));
  const std::string arquivo = "<h3><code>pl.rdb</code></h3>";
  EXPECT_NE(html.find(arquivo), std::string::npos);
  EXPECT_EQ(html.find(arquivo), html.rfind(arquivo));
  EXPECT_NE(html.find("<li class='erro'><b>erro</b>: só &lt;5&gt; músicas</li>"), std::string::npos);
  EXPECT_NE(html.find("<li><b>aviso</b>, linha 2: outra</li>"), std::string::npos);
}

}  // namespace
}  // namespace lumavox::cli
