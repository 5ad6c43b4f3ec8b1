// The plots of the simulation report, each one inline <svg> element sized by its viewBox so
// the page scales it; colours come from the page's style sheet (classes grade, eixo, nivel,
// tocada, avancada, barra, faixa, mediana, s0, s1), except the heat map's shades.
#pragma once

#include <string>
#include <vector>

#include "cli/simulacao.h"

namespace lumavox::cli {

// Above this many plays the vibe plot draws each hour's spread instead of a dot per play, so a
// month stays a light page.
constexpr size_t kMaximoPontosVibe = 1500;

// Each play's vibe over time (hollow when skipped), with the level as a step line on the
// right-hand scale; for a long run, the middle 80% of the vibes of each stretch of hours as a
// band and their median as a line.
std::string GraficoVibe(const Simulacao& s);
// One bar per hour of the run with its count of plays.
std::string GraficoPorHora(const Figuras& f);

// Bars side by side, one colour per series (class s0, s1, ...), a label under each group; the
// hover text of a bar is `dicas[serie][grupo]` when given.
struct SerieBarras {
  std::string nome;
  std::vector<double> valores;
  std::vector<std::string> dicas;
};
std::string GraficoBarras(const std::vector<std::string>& rotulos,
                          const std::vector<SerieBarras>& series, const std::string& tituloX,
                          const std::string& tituloY);

// How many songs played 0, 1, 2, ... times, one series per run; many counts are grouped into
// ranges of equal width, the rare highest ones into a last bar.
std::string GraficoVezes(const std::vector<std::pair<std::string, const Figuras*>>& rodadas);
// The gaps of artists and of titles by range of minutes, each as a share of its own gaps.
std::string GraficoEspacamento(const Figuras& f);
// Refusals of each rule (rows) by hour of day (columns), darker for more.
std::string GraficoNegadasPorHora(const Simulacao& s);

}  // namespace lumavox::cli
