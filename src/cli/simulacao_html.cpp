#include "cli/simulacao_html.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <sstream>

#include "cli/formato_html.h"
#include "cli/graficos_svg.h"

namespace lumavox::cli {

namespace {

// Songs named one by one under "never played"; the rest are counted.
constexpr size_t kNuncaTocadasListadas = 40;

std::string CelulaCaso(const std::optional<Intervalo::Caso>& c, bool minutos) {
  if (!c) return "<td>nenhuma repetição</td>";
  const std::string valor = minutos ? NumeroComVirgula(c->valor) + " min"
                                    : NumeroComVirgula(c->valor, 0) + (c->valor == 1 ? " música" : " músicas");
  return "<td><b>" + valor + "</b><br><small>" + EscaparHtml(ParaUtf8(c->quem)) + ": " + HoraMinuto(c->de) + " e " +
         HoraMinuto(c->ate) + "</small></td>";
}

std::string Texto8(const Texto& t) { return EscaparHtml(ParaUtf8(t)); }

long TotalNegadas(const Simulacao& s) {
  long n = 0;
  for (const auto& [chave, r] : s.regras) n += r.negada;
  return n;
}

// A rule by its id, with its set when another set met in the run has the same id, and its
// number when its own set has it twice.
std::string NomeRegra(const Simulacao& s, const ChaveRegra& r) {
  const auto& [conjunto, numero, id] = r;
  bool outroConjunto = false, mesmoConjunto = false;
  for (const auto& [outra, contagem] : s.regras) {
    if (std::get<2>(outra) != id || outra == r) continue;
    (std::get<0>(outra) == conjunto ? mesmoConjunto : outroConjunto) = true;
  }
  std::string nome = Texto8(id);
  if (mesmoConjunto) nome += " nº " + std::to_string(numero);
  if (outroConjunto || mesmoConjunto) nome += " c" + std::to_string(conjunto);
  return nome;
}

// "escolhida 71 vezes; em 65 delas era a única restante; regras negadas: 33 (65×), 12 (20×)"
std::string Motivo(const Simulacao& s, const Figuras::MaisTocada& m) {
  std::string t = "escolhida " + std::to_string(m.vezes) + (m.vezes == 1 ? " vez" : " vezes");
  if (m.unicaRestante > 0)
    t += "; em " + std::to_string(m.unicaRestante) + " delas era a única restante";
  else if (m.restantesMediana >= 0)
    t += "; restavam " + std::to_string(m.restantesMediana) + " (mediana)";
  if (m.negadas.empty()) return t + "; nenhuma regra negada";
  t += "; regras negadas: ";
  for (size_t i = 0; i < m.negadas.size() && i < 5; ++i)
    t += (i ? ", " : "") + NomeRegra(s, m.negadas[i].first) + " (" +
         std::to_string(m.negadas[i].second) + "×)";
  if (m.negadas.size() > 5) t += " e mais " + std::to_string(m.negadas.size() - 5);
  return t;
}

void TabelaMaisTocadas(std::ostringstream& h, const Simulacao& s, const Figuras& f) {
  h << "<table><tr><th>código</th><th>artista</th><th>título</th><th>vezes</th><th>o que as regras "
       "deixaram</th></tr>";
  for (const auto& m : f.maisTocadas)
    h << "<tr><td class='n'>" << m.codigo << "</td><td>" << Texto8(m.artista) << "</td><td>"
      << Texto8(m.titulo) << "</td><td class='n'>" << m.vezes << "</td><td><small>" << Motivo(s, m)
      << "</small></td></tr>";
  h << "</table>\n";
}

void TabelaRegras(std::ostringstream& h, const Simulacao& s) {
  h << "<table><tr><th>conjunto</th><th>nº</th><th>id</th><th>descrição</th><th>aplicada</th>"
       "<th>removeu músicas</th><th>negada</th><th>não realizada</th><th>erro</th></tr>";
  for (const auto& [chave, r] : s.regras) {
    h << "<tr><td class='n'>" << r.conjunto << "</td><td class='n'>" << r.numero << "</td><td>"
      << Texto8(r.id) << "</td><td>" << Texto8(r.descricao) << "</td><td class='n'>" << r.aplicada
      << "</td><td class='n'>" << r.removeu << "</td><td class='n'>" << r.negada
      << "</td><td class='n'>" << r.naoRealizada << "</td><td class='n'"
      << (r.ultimoErro.empty() ? "" : " title='" + EscaparHtml(r.ultimoErro) + "'") << ">" << r.erro
      << "</td></tr>";
  }
  h << "</table>\n";
}

void NegadasPorHora(std::ostringstream& h, const Simulacao& s) {
  if (TotalNegadas(s) == 0) {
    h << "<p>Nenhuma regra foi negada.</p>\n";
    return;
  }
  h << GraficoNegadasPorHora(s) << "\n";
}

void Espacamentos(std::ostringstream& h, const Figuras& f) {
  h << "<table><tr><th></th><th>intervalos</th><th>mínimo</th><th>5%</th><th>25%</th><th>mediana</"
       "th></tr>";
  auto Linha = [&](const char* rotulo, const Espacamento& e, bool minutos) {
    const auto& r = minutos ? e.minutos : e.musicas;
    h << "<tr><th>" << rotulo << (minutos ? ", em minutos" : ", em músicas")
      << "</th><td class='n'>" << e.intervalos << "</td>";
    if (!r) {
      h << "<td colspan='4'>nenhuma repetição</td></tr>";
      return;
    }
    for (double v : {r->minimo, r->p5, r->p25, r->mediana})
      h << "<td class='n'>" << (minutos ? NumeroComVirgula(v) : NumeroComVirgula(v, 0)) << "</td>";
    h << "</tr>";
  };
  Linha("artista", f.espacoArtista, false);
  Linha("artista", f.espacoArtista, true);
  Linha("título", f.espacoTitulo, false);
  Linha("título", f.espacoTitulo, true);
  h << "</table>\n" << GraficoEspacamento(f) << "\n<div class='lado'>";
  for (const auto& [rotulo, e] :
       {std::pair<const char*, const Espacamento*>{"Artistas", &f.espacoArtista},
        {"Títulos", &f.espacoTitulo}}) {
    h << "<div><h3>" << rotulo << " que voltaram mais cedo</h3><table><tr><th>"
      << (e == &f.espacoArtista ? "artista" : "título")
      << "</th><th>menor, min</th><th>em músicas</th><th>vezes</th></tr>";
    for (const Espacamento::Menor& m : e->menores)
      h << "<tr><td>" << Texto8(m.quem) << "</td><td class='n'>" << NumeroComVirgula(m.minutos)
        << "</td><td class='n'>" << NumeroComVirgula(m.musicas, 0) << "</td><td class='n'>"
        << m.intervalos << "</td></tr>";
    h << "</table></div>";
  }
  h << "</div>\n";
}

void Vezes(std::ostringstream& h, const Figuras& f) {
  long musicas = 0;
  for (long n : f.musicasPorVezes) musicas += n;
  const long umaVez = f.musicasPorVezes.size() > 1 ? f.musicasPorVezes[1] : 0;
  h << "<p>De " << musicas << " músicas, <b>" << f.nuncaTocadas.size() << " nunca tocaram</b>, "
    << umaVez << " tocaram uma vez só";
  if (!f.maisTocadas.empty())
    h << " e a mais tocada tocou " << f.maisTocadas.front().vezes << " vezes";
  h << ".</p>\n" << GraficoVezes({{"", &f}}) << "\n";
  if (f.nuncaTocadas.empty()) return;
  h << "<details><summary>As que nunca tocaram</summary><p class='lista'>";
  for (size_t i = 0; i < f.nuncaTocadas.size() && i < kNuncaTocadasListadas; ++i) {
    const MusicaDoAcervo& m = f.nuncaTocadas[i];
    h << (i ? "<br>" : "") << m.codigo << " " << Texto8(m.artista) << " – " << Texto8(m.titulo);
  }
  if (f.nuncaTocadas.size() > kNuncaTocadasListadas)
    h << "<br>e mais " << f.nuncaTocadas.size() - kNuncaTocadasListadas;
  h << "</p></details>\n";
}

// Summary figures of both runs in two columns with the difference.
void Comparacao(std::ostringstream& h, const Simulacao& s, const Figuras& f, const Alternativa& a) {
  struct Linha {
    const char* rotulo;
    std::function<std::optional<double>(const Simulacao&, const Figuras&)> valor;
    int casas;
  };
  auto Minutos = [](const Espacamento& e, bool mediana) -> std::optional<double> {
    if (!e.minutos) return std::nullopt;
    return mediana ? e.minutos->mediana : e.minutos->minimo;
  };
  const std::vector<Linha> linhas{
      {"músicas tocadas",
       [](const Simulacao& x, const Figuras&) { return double(x.tocadas.size()); }, 0},
      {"escolhas do motor", [](const Simulacao& x, const Figuras&) { return double(x.escolhidas); },
       0},
      {"músicas que nunca tocaram",
       [](const Simulacao&, const Figuras& y) { return double(y.nuncaTocadas.size()); }, 0},
      {"vezes da mais tocada",
       [](const Simulacao&, const Figuras& y) -> std::optional<double> {
         if (y.maisTocadas.empty()) return std::nullopt;
         return double(y.maisTocadas.front().vezes);
       },
       0},
      {"tocadas que eram a única restante",
       [](const Simulacao&, const Figuras& y) { return double(y.unicaRestante); }, 0},
      {"regras negadas", [](const Simulacao& x, const Figuras&) { return double(TotalNegadas(x)); },
       0},
      {"menor intervalo de artista, min",
       [&](const Simulacao&, const Figuras& y) { return Minutos(y.espacoArtista, false); }, 1},
      {"mediana do intervalo de artista, min",
       [&](const Simulacao&, const Figuras& y) { return Minutos(y.espacoArtista, true); }, 1},
      {"menor intervalo de título, min",
       [&](const Simulacao&, const Figuras& y) { return Minutos(y.espacoTitulo, false); }, 1},
      {"mediana do intervalo de título, min",
       [&](const Simulacao&, const Figuras& y) { return Minutos(y.espacoTitulo, true); }, 1},
  };
  h << "<table><tr><th></th><th>regras da estação</th><th>" << EscaparHtml(a.nome)
    << "</th><th>diferença</th></tr>";
  for (const Linha& l : linhas) {
    const auto x = l.valor(s, f), y = l.valor(a.sim, a.figuras);
    auto Celula = [&](const std::optional<double>& v) {
      return v ? NumeroComVirgula(*v, l.casas) : std::string("—");
    };
    h << "<tr><th>" << l.rotulo << "</th><td class='n'>" << Celula(x) << "</td><td class='n'>"
      << Celula(y) << "</td><td class='n'>";
    if (x && y) h << (*y - *x > 0 ? "+" : "") << NumeroComVirgula(*y - *x, l.casas);
    h << "</td></tr>";
  }
  h << "</table>\n<h3>Quantas vezes cada música tocou, nas duas rodadas</h3>\n"
    << GraficoVezes({{"regras da estação", &f}, {a.nome, &a.figuras}}) << "\n";
}

// The station check, grouped by file, errors first within each file's lines as found.
void Conferencia(std::ostringstream& h, const std::vector<Constatacao>& lista) {
  if (lista.empty()) return;
  const bool erros = TemErro(lista);
  h << "<h2 id='conferencia'>Conferência da estação</h2>\n<p>" << lista.size()
    << (lista.size() == 1 ? " ponto" : " pontos")
    << " da estação que o motor trata de um jeito que " << (erros ? "estraga" : "pode estragar")
    << " a programação (<code>lumavox-cli conferir</code> dá a mesma lista):</p>\n";
  std::string arquivo;
  for (const Constatacao& c : lista) {
    if (c.arquivo != arquivo || arquivo.empty()) {
      if (!arquivo.empty()) h << "</ul>\n";
      arquivo = c.arquivo;
      h << "<h3><code>" << EscaparHtml(arquivo) << "</code></h3>\n<ul class='lista'>";
    }
    h << "<li" << (c.nivel == NivelConstatacao::Erro ? " class='erro'" : "") << "><b>"
      << NomeDoNivel(c.nivel) << "</b>"
      << (c.linha ? ", linha " + std::to_string(*c.linha) : std::string()) << ": "
      << EscaparHtml(c.mensagem) << "</li>";
  }
  h << "</ul>\n";
}

void Avisos(std::ostringstream& h, const std::vector<std::string>& avisos,
            const std::string& titulo) {
  if (avisos.empty()) return;
  h << "<h2>" << EscaparHtml(titulo) << "</h2>\n<ul>";
  for (const std::string& a : avisos) h << "<li>" << EscaparHtml(a) << "</li>";
  h << "</ul>\n";
}

}  // namespace

std::string SimulacaoHtml(const Simulacao& s, const Figuras& f, const Alternativa* alternativa) {
  std::ostringstream h;
  h << "<!DOCTYPE html>\n<html lang='pt-BR'><head><meta charset='utf-8'><title>Simulação "
    << FormatarIso(s.inicio).substr(0, 16) << "</title><style>"
    << "body{font-family:system-ui,sans-serif;margin:24px auto;max-width:1000px;color:#222}"
    << "h1{font-size:1.4em}h2{font-size:1.1em;margin-top:1.6em;border-bottom:1px solid "
       "#ccc}h3{font-size:1em}"
    << "table{border-collapse:collapse;font-size:.9em}td,th{border:1px solid #ddd;padding:3px "
       "8px;text-align:left}"
    << "th{background:#f3f3f3}td.n{text-align:right}svg{width:100%;height:auto}"
    << ".grade{stroke:#e4e4e4}.eixo{font-size:11px;fill:#555}.celula{font-size:9px;fill:#333}"
    << ".nivel{fill:none;stroke:#d2691e;stroke-width:2}"
    << ".tocada{fill:#1f5fa8;fill-opacity:.75}.avancada{fill:none;stroke:#1f5fa8}.barra{fill:#"
       "5b8fc9}"
    << ".faixa{fill:#1f5fa8;fill-opacity:.22}.mediana{fill:none;stroke:#1f5fa8;stroke-width:1.2}"
    << ".s0{fill:#1f5fa8}.s1{fill:#e08a2c}.lado{display:flex;gap:24px}.lado>div{flex:1}.lado "
       "table{width:100%;font-size:.85em}.lista{font-size:.85em}"
    << ".legenda span{margin-right:1.5em}.resumo{line-height:1.6}.erro b{color:#b00020}"
    << "</style></head><body>\n";
  h << "<h1>Simulação de " << FormatarIso(s.inicio).substr(0, 16) << " a " << FormatarIso(s.fim).substr(0, 16)
    << "</h1>\n<p class='resumo'>Estação <code>" << EscaparHtml(s.estacao) << "</code>: " << s.totalMusicas
    << " músicas no acervo. Nível: " << EscaparHtml(s.origemNivel) << ". Semente " << s.semente << ".<br>"
    << s.tocadas.size() << " músicas tocadas (" << f.avancadas << " avançadas pelo ouvinte), " << s.escolhidas
    << " escolhas do motor. Simulado em " << NumeroComVirgula(s.segundosDeExecucao, 2) << " s.</p>\n";
  Conferencia(h, s.conferencia);

  if (alternativa) {
    h << "<h2>Regras da estação × " << EscaparHtml(alternativa->nome)
      << "</h2>\n<p>O mesmo período, semente e "
      << "nível, numa cópia nova da estação com as regras de <code>"
      << EscaparHtml(alternativa->nome)
      << "</code>. O restante do relatório é das regras da estação; as da alternativa vêm no "
         "fim.</p>\n";
    Comparacao(h, s, f, *alternativa);
  }

  const bool pontos = s.tocadas.size() <= kMaximoPontosVibe;
  h << "<h2>Vibe das músicas e nível de ritmo</h2>\n<p class='legenda'><span style='color:#1f5fa8'>"
    << (pontos ? "● vibe da música tocada (○ avançada)"
               : "▬ de 10% a 90% das vibes tocadas ━ mediana")
    << "</span><span style='color:#d2691e'>━ nível de ritmo (escala à direita; ÷10 na escala da "
       "vibe)</span></p>\n"
    << GraficoVibe(s) << "\n";
  h << "<h2>Músicas por hora</h2>\n" << GraficoPorHora(f) << "\n";

  h << "<h2>Quantas vezes cada música tocou</h2>\n";
  Vezes(h, f);
  h << "<h2>Mais tocadas</h2>\n";
  TabelaMaisTocadas(h, s, f);

  h << "<h2>Menor intervalo entre duas tocadas</h2>\n<table><tr><th></th><th>em músicas</th><th>em minutos</th></tr>"
    << "<tr><th>mesmo artista</th>" << CelulaCaso(f.artista.musicas, false) << CelulaCaso(f.artista.minutos, true)
    << "</tr><tr><th>mesmo título</th>" << CelulaCaso(f.titulo.musicas, false) << CelulaCaso(f.titulo.minutos, true)
    << "</tr></table>\n";
  h << "<h2>Espaçamento de artistas e títulos</h2>\n<p>Cada tocada contra a anterior do mesmo "
       "artista (ou "
       "título): 5% dos intervalos ficaram abaixo da coluna 5%, metade abaixo da mediana.</p>\n";
  Espacamentos(h, f);

  h << "<h2>Regras negadas por hora do dia</h2>\n";
  NegadasPorHora(h, s);
  h << "<h2>Regras</h2>\n";
  TabelaRegras(h, s);
  Avisos(h, s.avisos, "Avisos");

  if (alternativa) {
    const std::string nome = EscaparHtml(alternativa->nome);
    h << "<h2>Mais tocadas com " << nome << "</h2>\n";
    TabelaMaisTocadas(h, alternativa->sim, alternativa->figuras);
    h << "<h2>Regras negadas por hora do dia com " << nome << "</h2>\n";
    NegadasPorHora(h, alternativa->sim);
    h << "<h2>Regras de " << nome << "</h2>\n";
    TabelaRegras(h, alternativa->sim);
    Avisos(h, alternativa->sim.avisos, "Avisos com " + alternativa->nome);
  }
  h << "</body></html>\n";
  return h.str();
}

}  // namespace lumavox::cli
