#include "cli/simulacao.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <unordered_map>

namespace lumavox::cli {

namespace {

std::string Utf8(const Texto& t) { return ParaUtf8(t); }

std::string Hora(DataHora d) { return FormatarIso(d).substr(11, 5); }

std::string Escapar(std::string_view texto) {
  std::string s;
  for (char c : texto) {
    switch (c) {
      case '&': s += "&amp;"; break;
      case '<': s += "&lt;"; break;
      case '>': s += "&gt;"; break;
      case '"': s += "&quot;"; break;
      default: s += c;
    }
  }
  return s;
}

std::string Numero(double v, int casas = 1) {
  char texto[32];
  std::snprintf(texto, sizeof texto, "%.*f", casas, v);
  std::string s = texto;
  if (auto ponto = s.find('.'); ponto != std::string::npos) s[ponto] = ',';
  return s;
}

// Nearest earlier play sharing the value, for every play: the smallest of those distances is
// the smallest over all pairs, as air times only grow.
template <typename Igual>
Intervalo MenorIntervalo(const std::vector<TocadaSimulada>& tocadas, const std::vector<const Texto*>& valores,
                         Igual igual) {
  Intervalo r;
  for (size_t i = 1; i < tocadas.size(); ++i) {
    if (valores[i]->empty()) continue;
    for (size_t j = i; j-- > 0;) {
      if (valores[j]->empty() || !igual(i, j)) continue;
      const double musicas = static_cast<double>(i - j);
      const double minutos = static_cast<double>(tocadas[i].momento.segundos - tocadas[j].momento.segundos) / 60;
      const Intervalo::Caso caso{0, *valores[i], tocadas[j].momento, tocadas[i].momento};
      if (!r.musicas || musicas < r.musicas->valor) {
        r.musicas = caso;
        r.musicas->valor = musicas;
      }
      if (!r.minutos || minutos < r.minutos->valor) {
        r.minutos = caso;
        r.minutos->valor = minutos;
      }
      break;
    }
  }
  return r;
}

}  // namespace

Figuras CalcularFiguras(const Simulacao& s, const MesmoArtista& mesmoArtista, size_t quantasMaisTocadas) {
  Figuras f;
  for (DataHora h = s.inicio; h < s.fim; h = SomarSegundos(h, 3600)) f.porHora.emplace_back(h, 0);
  for (const TocadaSimulada& t : s.tocadas) {
    const int64_t hora = (t.momento.segundos - s.inicio.segundos) / 3600;
    if (hora >= 0 && hora < static_cast<int64_t>(f.porHora.size())) ++f.porHora[static_cast<size_t>(hora)].second;
    if (t.avancada) ++f.avancadas;
  }

  // Artists compare by pieces, as the engine does ("Ana feat Bia" shares Ana); the answer for
  // each pair of distinct texts is kept, as a day repeats the same few hundred names.
  std::vector<const Texto*> artistas, titulos;
  std::vector<Texto> titulosMaiusculos;
  std::unordered_map<Texto, size_t> idArtista;
  std::vector<size_t> ids;
  for (const TocadaSimulada& t : s.tocadas) {
    artistas.push_back(&t.artista);
    titulos.push_back(&t.titulo);
    titulosMaiusculos.push_back(Maiusculas(t.titulo));
    ids.push_back(idArtista.emplace(t.artista, idArtista.size()).first->second);
  }
  std::unordered_map<uint64_t, bool> comparados;
  f.artista = MenorIntervalo(s.tocadas, artistas, [&](size_t i, size_t j) {
    if (ids[i] == ids[j]) return true;
    const uint64_t par = (static_cast<uint64_t>(ids[i]) << 32) | ids[j];
    auto it = comparados.find(par);
    if (it == comparados.end()) it = comparados.emplace(par, mesmoArtista(*artistas[i], *artistas[j])).first;
    return it->second;
  });
  f.titulo = MenorIntervalo(s.tocadas, titulos,
                            [&](size_t i, size_t j) { return titulosMaiusculos[i] == titulosMaiusculos[j]; });

  std::map<int32_t, size_t> vezes;
  std::map<int32_t, const TocadaSimulada*> primeira;
  for (const TocadaSimulada& t : s.tocadas) {
    ++vezes[t.codigo];
    primeira.emplace(t.codigo, &t);
  }
  for (const auto& [codigo, n] : vezes)
    f.maisTocadas.push_back({codigo, primeira[codigo]->artista, primeira[codigo]->titulo, static_cast<long>(n)});
  std::stable_sort(f.maisTocadas.begin(), f.maisTocadas.end(),
                   [](const auto& a, const auto& b) { return a.vezes > b.vezes; });
  if (f.maisTocadas.size() > quantasMaisTocadas) f.maisTocadas.resize(quantasMaisTocadas);
  return f;
}

namespace {

constexpr double kLargura = 960, kAltura = 300, kEsq = 48, kDir = 48, kTopo = 16, kBase = 34;

// Hour marks along the time axis, spaced so their labels never crowd.
void EixoDoTempo(std::ostringstream& svg, const Simulacao& s, double x0, double largura, double yBase) {
  const double total = static_cast<double>(s.fim.segundos - s.inicio.segundos);
  const int64_t passo = total <= 6 * 3600 ? 3600 : total <= 24 * 3600 ? 3 * 3600 : 24 * 3600;
  // The first mark on a whole hour (or midnight for day marks) at or after the start.
  int64_t primeiro = s.inicio.segundos + (passo - s.inicio.segundos % passo) % passo;
  for (int64_t t = primeiro; t <= s.fim.segundos; t += passo) {
    const double x = x0 + largura * static_cast<double>(t - s.inicio.segundos) / total;
    const DataHora d{t};
    const std::string rotulo = passo >= 24 * 3600 ? FormatarIso(d).substr(5, 5) : Hora(d);
    svg << "<line x1='" << x << "' y1='" << kTopo << "' x2='" << x << "' y2='" << yBase
        << "' class='grade'/><text x='" << x << "' y='" << yBase + 16 << "' class='eixo' text-anchor='middle'>"
        << rotulo << "</text>";
  }
}

std::string GraficoVibe(const Simulacao& s) {
  const double w = kLargura - kEsq - kDir, h = kAltura - kTopo - kBase;
  const double total = std::max<double>(1, static_cast<double>(s.fim.segundos - s.inicio.segundos));
  auto X = [&](DataHora d) { return kEsq + w * static_cast<double>(d.segundos - s.inicio.segundos) / total; };
  auto Y = [&](double vibe) { return kTopo + h * (1 - std::clamp(vibe, 0.0, 10.0) / 10); };
  std::ostringstream svg;
  svg << "<svg viewBox='0 0 " << kLargura << " " << kAltura << "' role='img' aria-label='Vibe e nível'>";
  for (int v = 0; v <= 10; v += 2) {
    svg << "<line x1='" << kEsq << "' y1='" << Y(v) << "' x2='" << kEsq + w << "' y2='" << Y(v)
        << "' class='grade'/><text x='" << kEsq - 6 << "' y='" << Y(v) + 4 << "' class='eixo' text-anchor='end'>" << v
        << "</text><text x='" << kEsq + w + 6 << "' y='" << Y(v) + 4 << "' class='eixo'>" << v * 10 << "</text>";
  }
  EixoDoTempo(svg, s, kEsq, w, kTopo + h);
  // The level as a step line on the vibe scale (level ÷ 10, the centre rules 32 and 33 use).
  svg << "<polyline class='nivel' points='";
  for (size_t i = 0; i < s.niveis.size(); ++i) {
    const DataHora de = std::max(s.niveis[i].first, s.inicio);
    const DataHora ate = i + 1 < s.niveis.size() ? s.niveis[i + 1].first : s.fim;
    const double y = Y(s.niveis[i].second / 10.0);
    svg << X(de) << "," << y << " " << X(std::min(ate, s.fim)) << "," << y << " ";
  }
  svg << "'/>";
  for (const TocadaSimulada& t : s.tocadas)
    svg << "<circle cx='" << X(t.momento) << "' cy='" << Y(t.vibe) << "' r='2.6' class='"
        << (t.avancada ? "avancada" : "tocada") << "'><title>" << Hora(t.momento) << " " << Escapar(Utf8(t.artista))
        << " – " << Escapar(Utf8(t.titulo)) << " (vibe " << Numero(t.vibe) << ", nível " << t.nivel
        << ")</title></circle>";
  svg << "<text x='" << 4 << "' y='" << kTopo - 4 << "' class='eixo'>vibe</text><text x='" << kLargura - 4 << "' y='"
      << kTopo - 4 << "' class='eixo' text-anchor='end'>nível</text></svg>";
  return svg.str();
}

std::string GraficoPorHora(const Figuras& f) {
  const double w = kLargura - kEsq - kDir, h = 180 - kTopo - kBase;
  long maior = 1;
  for (const auto& [hora, n] : f.porHora) maior = std::max(maior, n);
  const double passo = w / static_cast<double>(std::max<size_t>(1, f.porHora.size()));
  std::ostringstream svg;
  svg << "<svg viewBox='0 0 " << kLargura << " 180' role='img' aria-label='Músicas por hora'>";
  for (size_t i = 0; i < f.porHora.size(); ++i) {
    const auto& [hora, n] = f.porHora[i];
    const double altura = h * static_cast<double>(n) / static_cast<double>(maior);
    const double x = kEsq + passo * static_cast<double>(i);
    svg << "<rect x='" << x + passo * 0.1 << "' y='" << kTopo + h - altura << "' width='" << passo * 0.8
        << "' height='" << altura << "' class='barra'><title>" << Hora(hora) << ": " << n << "</title></rect>";
    svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h - altura - 3 << "' class='eixo' text-anchor='middle'>"
        << n << "</text>";
    if (f.porHora.size() <= 48 || i % 6 == 0)
      svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h + 16 << "' class='eixo' text-anchor='middle'>"
          << (f.porHora.size() > 24 ? Hora(hora).substr(0, 2) : Hora(hora)) << "</text>";
  }
  svg << "</svg>";
  return svg.str();
}

std::string CelulaCaso(const std::optional<Intervalo::Caso>& c, bool minutos) {
  if (!c) return "<td>nenhuma repetição</td>";
  return "<td><b>" + (minutos ? Numero(c->valor) + " min" : Numero(c->valor, 0) + (c->valor == 1 ? " música" : " músicas")) + "</b><br><small>" +
         Escapar(Utf8(c->quem)) + ": " + Hora(c->de) + " e " + Hora(c->ate) + "</small></td>";
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
    << "</h1>\n<p class='resumo'>Estação <code>" << Escapar(s.estacao) << "</code>: " << s.totalMusicas
    << " músicas no acervo. Nível: " << Escapar(s.origemNivel) << ". Semente " << s.semente << ".<br>"
    << s.tocadas.size() << " músicas tocadas (" << f.avancadas << " avançadas pelo ouvinte), " << s.escolhidas
    << " escolhas do motor. Simulado em " << Numero(s.segundosDeExecucao, 2) << " s.</p>\n";

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
    h << "<tr><td class='n'>" << m.codigo << "</td><td>" << Escapar(Utf8(m.artista)) << "</td><td>"
      << Escapar(Utf8(m.titulo)) << "</td><td class='n'>" << m.vezes << "</td></tr>";
  h << "</table>\n";

  h << "<h2>Regras</h2>\n<table><tr><th>conjunto</th><th>nº</th><th>id</th><th>descrição</th><th>aplicada</th>"
       "<th>removeu músicas</th><th>negada</th><th>não realizada</th><th>erro</th></tr>";
  for (const auto& [chave, r] : s.regras) {
    h << "<tr><td class='n'>" << r.conjunto << "</td><td class='n'>" << r.numero << "</td><td>" << Escapar(Utf8(r.id))
      << "</td><td>" << Escapar(Utf8(r.descricao)) << "</td><td class='n'>" << r.aplicada << "</td><td class='n'>"
      << r.removeu << "</td><td class='n'>" << r.negada << "</td><td class='n'>" << r.naoRealizada
      << "</td><td class='n'"
      << (r.ultimoErro.empty() ? "" : " title='" + Escapar(r.ultimoErro) + "'") << ">" << r.erro << "</td></tr>";
  }
  h << "</table>\n";
  if (!s.avisos.empty()) {
    h << "<h2>Avisos</h2>\n<ul>";
    for (const std::string& a : s.avisos) h << "<li>" << Escapar(a) << "</li>";
    h << "</ul>\n";
  }
  h << "</body></html>\n";
  return h.str();
}

}  // namespace lumavox::cli
