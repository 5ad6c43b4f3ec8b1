// The plots of the simulation report, each one inline <svg> element sized by its viewBox so
// the page scales it; colours come from the page's style sheet (classes grade, eixo, nivel,
// tocada, avancada, barra).
#pragma once

#include <string>

#include "cli/simulacao.h"

namespace lumavox::cli {

// Each play's vibe over time (hollow when skipped), with the level as a step line on the
// right-hand scale.
std::string GraficoVibe(const Simulacao& s);
// One bar per hour of the run with its count of plays.
std::string GraficoPorHora(const Figuras& f);

}  // namespace lumavox::cli
