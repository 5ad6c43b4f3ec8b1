#include "cli/simulacao_html.h"

#include <optional>
#include <sstream>

#include "cli/formato_html.h"
#include "cli/graficos_svg.h"

namespace lumavox::cli {

namespace {

std::string CelulaCaso(const std::optional<Intervalo::Caso>& c, bool minutos) {
  if (!c) return "<td>nenhuma repetição</td>";
  const std::string valor = minutos ? NumeroComVirgula(c->valor) + " min"
                                    : NumeroComVirgula(c->valor, 0) + (c->valor == 1 ? " música" : " músicas");
  return "<td><b>" + valor + "</b><br><small>" + EscaparHtml(ParaUtf8(c->quem)) + ": " + HoraMinuto(c->de) + " e " +
         HoraMinuto(c->ate) + "</small></td>";
}

}  // namespace

std::string SimulacaoHtml(const Simulacao& s, const Figuras& f) {
  std::ostringstream h;
  h << "<!DOCTYPE html>\n<html lang='pt-BR'><head><meta charset='utf-8'><title>Simulação "
    << FormatarIso(s.inicio).substr(0, 16) << "</title><style>"
    << "body{font-family:system-ui,sans-serif;margin:24px auto;max-width:1000px;color:#222}"
    << "h1{font-size:1.4em}h2{font-size:1.1em;margin-top:1.6em;border-bottom:1px solid #ccc}"
    << "table{border-collapse:collapse;font-size:.9em}td,th{border:1px solid #ddd;padding:3px 8px;text-align:left}"
    << "th{background:#f3f3f3}td.n{text-align:right}svg{width:100%;height:auto}"
    << ".grade{stroke:#e4e4e4}.eixo{font-size:11px;fill:#555}.nivel{fill:none;stroke:#d2691e;stroke-width:2}"
    << ".tocada{fill:#1f5fa8;fill-opacity:.75}.avancada{fill:none;stroke:#1f5fa8}.barra{fill:#5b8fc9}"
    << ".legenda span{margin-right:1.5em}.resumo{line-height:1.6}"
    << "</style></head><body>\n";
  h << "<h1>Simulação de " << FormatarIso(s.inicio).substr(0, 16) << " a " << FormatarIso(s.fim).substr(0, 16)
    << "</h1>\n<p class='resumo'>Estação <code>" << EscaparHtml(s.estacao) << "</code>: " << s.totalMusicas
    << " músicas no acervo. Nível: " << EscaparHtml(s.origemNivel) << ". Semente " << s.semente << ".<br>"
    << s.tocadas.size() << " músicas tocadas (" << f.avancadas << " avançadas pelo ouvinte), " << s.escolhidas
    << " escolhas do motor. Simulado em " << NumeroComVirgula(s.segundosDeExecucao, 2) << " s.</p>\n";

  h << "<h2>Vibe das músicas e nível de ritmo</h2>\n<p class='legenda'><span style='color:#1f5fa8'>● vibe da música "
       "tocada (○ avançada)</span><span style='color:#d2691e'>━ nível de ritmo (escala à direita; ÷10 na escala da "
       "vibe)</span></p>\n"
    << GraficoVibe(s) << "\n";
  h << "<h2>Músicas por hora</h2>\n" << GraficoPorHora(f) << "\n";

  h << "<h2>Menor intervalo entre duas tocadas</h2>\n<table><tr><th></th><th>em músicas</th><th>em minutos</th></tr>"
    << "<tr><th>mesmo artista</th>" << CelulaCaso(f.artista.musicas, false) << CelulaCaso(f.artista.minutos, true)
    << "</tr><tr><th>mesmo título</th>" << CelulaCaso(f.titulo.musicas, false) << CelulaCaso(f.titulo.minutos, true)
    << "</tr></table>\n";

  h << "<h2>Mais tocadas</h2>\n<table><tr><th>código</th><th>artista</th><th>título</th><th>vezes</th></tr>";
  for (const auto& m : f.maisTocadas)
    h << "<tr><td class='n'>" << m.codigo << "</td><td>" << EscaparHtml(ParaUtf8(m.artista)) << "</td><td>"
      << EscaparHtml(ParaUtf8(m.titulo)) << "</td><td class='n'>" << m.vezes << "</td></tr>";
  h << "</table>\n";

  h << "<h2>Regras</h2>\n<table><tr><th>conjunto</th><th>nº</th><th>id</th><th>descrição</th><th>aplicada</th>"
       "<th>removeu músicas</th><th>negada</th><th>não realizada</th><th>erro</th></tr>";
  for (const auto& [chave, r] : s.regras) {
    h << "<tr><td class='n'>" << r.conjunto << "</td><td class='n'>" << r.numero << "</td><td>"
      << EscaparHtml(ParaUtf8(r.id)) << "</td><td>" << EscaparHtml(ParaUtf8(r.descricao)) << "</td><td class='n'>"
      << r.aplicada << "</td><td class='n'>" << r.removeu << "</td><td class='n'>" << r.negada << "</td><td class='n'>"
      << r.naoRealizada << "</td><td class='n'"
      << (r.ultimoErro.empty() ? "" : " title='" + EscaparHtml(r.ultimoErro) + "'") << ">" << r.erro << "</td></tr>";
  }
  h << "</table>\n";
  if (!s.avisos.empty()) {
    h << "<h2>Avisos</h2>\n<ul>";
    for (const std::string& a : s.avisos) h << "<li>" << EscaparHtml(a) << "</li>";
    h << "</ul>\n";
  }
  h << "</body></html>\n";
  return h.str();
}

}  // namespace lumavox::cli
