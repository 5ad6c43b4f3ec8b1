#include "cli/graficos_svg.h"

#include <algorithm>
#include <sstream>

#include "cli/formato_html.h"

namespace lumavox::cli {

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
    const std::string rotulo = passo >= 24 * 3600 ? FormatarIso(d).substr(5, 5) : HoraMinuto(d);
    svg << "<line x1='" << x << "' y1='" << kTopo << "' x2='" << x << "' y2='" << yBase
        << "' class='grade'/><text x='" << x << "' y='" << yBase + 16 << "' class='eixo' text-anchor='middle'>"
        << rotulo << "</text>";
  }
}

}  // namespace

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
        << (t.avancada ? "avancada" : "tocada") << "'><title>" << HoraMinuto(t.momento) << " "
        << EscaparHtml(ParaUtf8(t.artista)) << " – " << EscaparHtml(ParaUtf8(t.titulo)) << " (vibe "
        << NumeroComVirgula(t.vibe) << ", nível " << t.nivel << ")</title></circle>";
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
        << "' height='" << altura << "' class='barra'><title>" << HoraMinuto(hora) << ": " << n << "</title></rect>";
    svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h - altura - 3 << "' class='eixo' text-anchor='middle'>"
        << n << "</text>";
    if (f.porHora.size() <= 48 || i % 6 == 0)
      svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h + 16 << "' class='eixo' text-anchor='middle'>"
          << (f.porHora.size() > 24 ? HoraMinuto(hora).substr(0, 2) : HoraMinuto(hora)) << "</text>";
  }
  svg << "</svg>";
  return svg.str();
}

}  // namespace lumavox::cli
