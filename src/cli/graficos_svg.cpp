#include "cli/graficos_svg.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "cli/formato_html.h"

namespace lumavox::cli {

namespace {

constexpr double kLargura = 960, kAltura = 300, kEsq = 48, kDir = 48, kTopo = 16, kBase = 34;

// Hour marks along the time axis, spaced so their labels never crowd.
void EixoDoTempo(std::ostringstream& svg, const Simulacao& s, double x0, double largura, double yBase) {
  const double total = static_cast<double>(s.fim.segundos - s.inicio.segundos);
  // The smallest step giving at most a dozen marks; days from two days up.
  int64_t passo = 3600;
  for (int64_t horas : {1, 3, 6, 24, 48, 72, 168}) {
    passo = horas * 3600;
    if (total / static_cast<double>(passo) <= (horas < 6 ? 8 : 12)) break;
  }
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
  if (s.tocadas.size() <= kMaximoPontosVibe) {
    for (const TocadaSimulada& t : s.tocadas)
      svg << "<circle cx='" << X(t.momento) << "' cy='" << Y(t.vibe) << "' r='2.6' class='"
          << (t.avancada ? "avancada" : "tocada") << "'><title>" << HoraMinuto(t.momento) << " "
          << EscaparHtml(ParaUtf8(t.artista)) << " – " << EscaparHtml(ParaUtf8(t.titulo))
          << " (vibe " << NumeroComVirgula(t.vibe) << ", nível " << t.nivel << ")</title></circle>";
  } else {
    // The 10th to 90th percentile of the vibes of each stretch of a few hours as a band and
    // their median as a line, at most 240 stretches; one without plays breaks both.
    const int64_t duracao = s.fim.segundos - s.inicio.segundos;
    const int64_t trecho = 3600 * ((duracao / 3600 + 239) / 240);
    const auto horas = static_cast<size_t>((duracao + trecho - 1) / trecho);
    std::vector<std::vector<double>> porHora(horas);
    for (const TocadaSimulada& t : s.tocadas) {
      const int64_t hora = (t.momento.segundos - s.inicio.segundos) / trecho;
      if (hora >= 0 && hora < static_cast<int64_t>(horas))
        porHora[static_cast<size_t>(hora)].push_back(t.vibe);
    }
    std::ostringstream faixa, mediana;
    for (size_t i = 0; i < horas;) {
      if (porHora[i].empty()) {
        ++i;
        continue;
      }
      size_t fim = i;
      for (; fim < horas && !porHora[fim].empty(); ++fim)
        std::sort(porHora[fim].begin(), porHora[fim].end());
      auto Xh = [&](size_t k) {
        return X(SomarSegundos(s.inicio, static_cast<int64_t>(k) * trecho + trecho / 2));
      };
      faixa << "M";
      mediana << "M";
      for (size_t k = i; k < fim; ++k) {
        faixa << Xh(k) << "," << Y(Percentil(porHora[k], 90)) << " ";
        mediana << Xh(k) << "," << Y(Percentil(porHora[k], 50)) << " ";
      }
      for (size_t k = fim; k-- > i;) faixa << Xh(k) << "," << Y(Percentil(porHora[k], 10)) << " ";
      faixa << "Z";
      i = fim;
    }
    svg << "<path class='faixa' d='" << faixa.str() << "'/><path class='mediana' d='"
        << mediana.str() << "'/>";
  }
  svg << "<text x='" << 4 << "' y='" << kTopo - 4 << "' class='eixo'>vibe</text><text x='" << kLargura - 4 << "' y='"
      << kTopo - 4 << "' class='eixo' text-anchor='end'>nível</text></svg>";
  return svg.str();
}

std::string GraficoPorHora(const Figuras& f) {
  const double w = kLargura - kEsq - kDir, h = 180 - kTopo - kBase;
  long maior = 1;
  for (const auto& [hora, n] : f.porHora) maior = std::max(maior, n);
  const size_t barras = f.porHora.size();
  const double passo = w / static_cast<double>(std::max<size_t>(1, barras));
  // Past a week the bars are too thin for their counts; the axis then marks days, at most
  // sixteen of them.
  const bool longo = barras > 7 * 24;
  const size_t diasPorMarca = std::max<size_t>(1, (barras / 24 + 15) / 16);
  std::ostringstream svg;
  svg << "<svg viewBox='0 0 " << kLargura << " 180' role='img' aria-label='Músicas por hora'>";
  for (size_t i = 0; i < barras; ++i) {
    const auto& [hora, n] = f.porHora[i];
    const double altura = h * static_cast<double>(n) / static_cast<double>(maior);
    const double x = kEsq + passo * static_cast<double>(i);
    svg << "<rect x='" << x + passo * 0.1 << "' y='" << kTopo + h - altura << "' width='"
        << passo * 0.8 << "' height='" << altura << "' class='barra'><title>"
        << (longo ? FormatarIso(hora).substr(5, 11) : HoraMinuto(hora)) << ": " << n
        << "</title></rect>";
    if (!longo)
      svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h - altura - 3
          << "' class='eixo' text-anchor='middle'>" << n << "</text>";
    if (longo) {
      const int64_t diaDoAno = hora.segundos / 86400;
      if (SegundosDoDia(hora) < 3600 && diaDoAno % static_cast<int64_t>(diasPorMarca) == 0)
        svg << "<line x1='" << x << "' y1='" << kTopo + h << "' x2='" << x << "' y2='"
            << kTopo + h + 4 << "' class='grade'/><text x='" << x << "' y='" << kTopo + h + 16
            << "' class='eixo' text-anchor='middle'>" << FormatarIso(hora).substr(5, 5)
            << "</text>";
    } else if (barras <= 48 || i % 6 == 0) {
      svg << "<text x='" << x + passo / 2 << "' y='" << kTopo + h + 16
          << "' class='eixo' text-anchor='middle'>"
          << (barras > 24 ? HoraMinuto(hora).substr(0, 2) : HoraMinuto(hora)) << "</text>";
    }
  }
  svg << "</svg>";
  return svg.str();
}

namespace {

// 1, 2 or 5 times a power of ten, so that `maior` needs at most five grid lines.
double PassoRedondo(double maior) {
  double passo = 1;
  while (maior / passo > 5) {
    if (maior / (passo * 2) <= 5) return passo * 2;
    if (maior / (passo * 5) <= 5) return passo * 5;
    passo *= 10;
  }
  return passo;
}

std::string Numero(double v) {
  return std::floor(v) == v ? NumeroComVirgula(v, 0) : NumeroComVirgula(v, 1);
}

// "15–30 min", "1–1,5 h", "≥ 2 d": the unit of the range's upper bound.
std::string RotuloFaixa(size_t i) {
  auto Em = [](double minutos, double unidade) { return Numero(minutos / unidade); };
  const double de = kFaixasMinutos[i];
  if (i + 1 == kFaixasMinutos.size())
    return "≥ " + Em(de, de >= 1440 ? 1440 : 60) + (de >= 1440 ? " d" : " h");
  const double ate = kFaixasMinutos[i + 1];
  if (ate <= 60) return Em(de, 1) + "–" + Em(ate, 1) + " min";
  if (ate <= 1440) return Em(de, 60) + "–" + Em(ate, 60) + " h";
  return Em(de, 1440) + "–" + Em(ate, 1440) + " d";
}

}  // namespace

std::string GraficoBarras(const std::vector<std::string>& rotulos,
                          const std::vector<SerieBarras>& series, const std::string& tituloX,
                          const std::string& tituloY) {
  constexpr double kAlturaBarras = 240, kTopoBarras = 30, kBaseBarras = 44, kDirBarras = 16;
  const double w = kLargura - kEsq - kDirBarras, h = kAlturaBarras - kTopoBarras - kBaseBarras;
  double maior = 0;
  for (const SerieBarras& serie : series)
    for (double v : serie.valores) maior = std::max(maior, v);
  const double passoGrade = PassoRedondo(std::max(maior, 1.0));
  const double topo = std::ceil(std::max(maior, 1.0) / passoGrade) * passoGrade;
  auto Y = [&](double v) { return kTopoBarras + h * (1 - v / topo); };
  const size_t grupos = std::max<size_t>(1, rotulos.size());
  const double largura = w / static_cast<double>(grupos);
  const double barra = largura * 0.8 / static_cast<double>(std::max<size_t>(1, series.size()));
  // Every label keeps clear of its neighbours: about 6 px a character at the axis's size.
  size_t maiorRotulo = 1;
  for (const std::string& r : rotulos)
    maiorRotulo = std::max<size_t>(
        maiorRotulo, std::count_if(r.begin(), r.end(), [](char c) { return (c & 0xC0) != 0x80; }));
  const auto cadaRotulo =
      static_cast<size_t>(std::ceil((6.0 * static_cast<double>(maiorRotulo) + 8) / largura));

  std::ostringstream svg;
  svg << "<svg viewBox='0 0 " << kLargura << " " << kAlturaBarras << "' role='img' aria-label='"
      << EscaparHtml(tituloY) << "'>";
  for (double v = 0; v <= topo + passoGrade / 2; v += passoGrade)
    svg << "<line x1='" << kEsq << "' y1='" << Y(v) << "' x2='" << kEsq + w << "' y2='" << Y(v)
        << "' class='grade'/><text x='" << kEsq - 6 << "' y='" << Y(v) + 4
        << "' class='eixo' text-anchor='end'>" << Numero(v) << "</text>";
  for (size_t s = 0; s < series.size(); ++s) {
    const SerieBarras& serie = series[s];
    for (size_t g = 0; g < serie.valores.size() && g < grupos; ++g) {
      const double v = serie.valores[g];
      if (v <= 0) continue;
      const double x =
          kEsq + largura * static_cast<double>(g) + largura * 0.1 + barra * static_cast<double>(s);
      svg << "<rect x='" << x << "' y='" << Y(v) << "' width='" << barra << "' height='"
          << Y(0) - Y(v) << "' class='s" << s << "'>";
      if (g < serie.dicas.size()) svg << "<title>" << EscaparHtml(serie.dicas[g]) << "</title>";
      svg << "</rect>";
    }
  }
  for (size_t g = 0; g < rotulos.size(); g += cadaRotulo)
    svg << "<text x='" << kEsq + largura * (static_cast<double>(g) + 0.5) << "' y='" << Y(0) + 15
        << "' class='eixo' text-anchor='middle'>" << EscaparHtml(rotulos[g]) << "</text>";
  svg << "<text x='" << kEsq + w / 2 << "' y='" << kAlturaBarras - 6
      << "' class='eixo' text-anchor='middle'>" << EscaparHtml(tituloX)
      << "</text><text x='4' y='14' class='eixo'>" << EscaparHtml(tituloY) << "</text>";
  double xLegenda = kEsq + w;
  for (size_t s = series.size(); s-- > 0;) {
    if (series.size() < 2) break;
    xLegenda -= 14 + 7.0 * static_cast<double>(series[s].nome.size());
    svg << "<rect x='" << xLegenda << "' y='5' width='10' height='10' class='s" << s
        << "'/><text x='" << xLegenda + 14 << "' y='14' class='eixo'>"
        << EscaparHtml(series[s].nome) << "</text>";
  }
  svg << "</svg>";
  return svg.str();
}

std::string GraficoVezes(const std::vector<std::pair<std::string, const Figuras*>>& rodadas) {
  // Up to fifty counts one bar each; past that, ranges of equal width up to the count 99% of
  // the songs stay within, and one bar for the rest, so a song stuck on air does not squeeze
  // all others into the first bar.
  size_t grupos = 1, ate = 0;
  for (const auto& [nome, f] : rodadas) {
    grupos = std::max(grupos, f->musicasPorVezes.size());
    long total = 0, acumulado = 0;
    for (long n : f->musicasPorVezes) total += n;
    for (size_t n = 0; n < f->musicasPorVezes.size(); ++n)
      if ((acumulado += f->musicasPorVezes[n]) * 100 >= total * 99) {
        ate = std::max(ate, n);
        break;
      }
  }
  size_t largura = 1, faixas = grupos;
  if (grupos > 50) {
    largura = (ate + 50) / 50;
    faixas = (ate + largura) / largura;
  }
  std::vector<std::string> rotulos;
  for (size_t de = 0; de < faixas * largura; de += largura)
    rotulos.push_back(largura == 1 ? std::to_string(de)
                                   : std::to_string(de) + "–" + std::to_string(de + largura - 1));
  const bool resto = faixas * largura < grupos;
  if (resto) rotulos.push_back("≥ " + std::to_string(faixas * largura));
  std::vector<SerieBarras> series;
  for (const auto& [nome, f] : rodadas) {
    SerieBarras serie{nome, std::vector<double>(rotulos.size(), 0), {}};
    for (size_t n = 0; n < f->musicasPorVezes.size(); ++n)
      serie.valores[std::min(n / largura, rotulos.size() - 1)] +=
          static_cast<double>(f->musicasPorVezes[n]);
    for (size_t g = 0; g < rotulos.size(); ++g)
      serie.dicas.push_back(Numero(serie.valores[g]) + " músicas tocaram " + rotulos[g] + " vezes" +
                            (rodadas.size() > 1 ? " (" + nome + ")" : ""));
    series.push_back(std::move(serie));
  }
  return GraficoBarras(rotulos, series, "vezes que a música tocou", "músicas");
}

std::string GraficoEspacamento(const Figuras& f) {
  std::vector<std::string> rotulos;
  for (size_t i = 0; i < kFaixasMinutos.size(); ++i) rotulos.push_back(RotuloFaixa(i));
  std::vector<SerieBarras> series;
  for (const auto& [nome, e] :
       {std::pair<std::string, const Espacamento*>{"artista", &f.espacoArtista},
        {"título", &f.espacoTitulo}}) {
    SerieBarras serie{nome, {}, {}};
    for (size_t i = 0; i < e->histograma.size(); ++i) {
      const double parte = e->intervalos ? 100.0 * static_cast<double>(e->histograma[i]) /
                                               static_cast<double>(e->intervalos)
                                         : 0;
      serie.valores.push_back(parte);
      serie.dicas.push_back(std::to_string(e->histograma[i]) + " intervalos de " + nome +
                            " entre " + rotulos[i] + " (" + NumeroComVirgula(parte) + "%)");
    }
    series.push_back(std::move(serie));
  }
  return GraficoBarras(rotulos, series,
                       "intervalo até a tocada anterior do mesmo artista ou título",
                       "% dos intervalos");
}

std::string GraficoNegadasPorHora(const Simulacao& s) {
  constexpr double kRotulo = 190, kTotal = 56, kLinha = 18, kCabecalho = 22;
  const double celula = (kLargura - kRotulo - kTotal) / 24;
  long maior = 1;
  for (const auto& [chave, r] : s.regras)
    for (long n : r.negadaPorHora) maior = std::max(maior, n);
  const double altura = kCabecalho + kLinha * static_cast<double>(s.regras.size()) + 4;
  std::ostringstream svg;
  svg << "<svg viewBox='0 0 " << kLargura << " " << altura
      << "' role='img' aria-label='Regras negadas por hora'>";
  for (int hora = 0; hora < 24; ++hora)
    svg << "<text x='" << kRotulo + celula * (hora + 0.5)
        << "' y='15' class='eixo' text-anchor='middle'>" << (hora < 10 ? "0" : "") << hora
        << "</text>";
  svg << "<text x='" << kLargura - 4 << "' y='15' class='eixo' text-anchor='end'>total</text>";
  double y = kCabecalho;
  for (const auto& [chave, r] : s.regras) {
    const std::string nome = "conjunto " + std::to_string(r.conjunto) + " · nº " +
                             std::to_string(r.numero) + " · " + EscaparHtml(ParaUtf8(r.id));
    svg << "<text x='" << kRotulo - 8 << "' y='" << y + 13 << "' class='eixo' text-anchor='end'>"
        << nome << "<title>" << EscaparHtml(ParaUtf8(r.descricao)) << "</title></text>";
    for (int hora = 0; hora < 24; ++hora) {
      const long n = r.negadaPorHora[static_cast<size_t>(hora)];
      // The square root keeps a rule refused a few times visible beside one refused thousands.
      const double t = std::sqrt(static_cast<double>(n) / static_cast<double>(maior));
      const double x = kRotulo + celula * hora;
      svg << "<rect x='" << x << "' y='" << y << "' width='" << celula - 1 << "' height='"
          << kLinha - 1 << "' fill='";
      if (n == 0) {
        svg << "#f4f4f4'>";
      } else {
        svg << "rgb(" << std::lround(252 - 92 * t) << "," << std::lround(228 - 200 * t) << ","
            << std::lround(210 - 180 * t) << ")'>";
      }
      svg << "<title>" << nome << ", " << (hora < 10 ? "0" : "") << hora << "h: " << n
          << " negadas</title></rect>";
      if (n > 0)
        svg << "<text x='" << x + celula / 2 << "' y='" << y + 12
            << "' class='celula' text-anchor='middle'" << (t > 0.6 ? " style='fill:#fff'" : "")
            << ">" << n << "</text>";
    }
    svg << "<text x='" << kLargura - 4 << "' y='" << y + 13 << "' class='eixo' text-anchor='end'>"
        << r.negada << "</text>";
    y += kLinha;
  }
  svg << "</svg>";
  return svg.str();
}

}  // namespace lumavox::cli
