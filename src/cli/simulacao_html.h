// The simulation report as one self-contained HTML page: summary, the plots as inline SVG and
// the tables of shortest repeats, most played songs, rule outcomes and warnings. Nothing is
// loaded from outside the file, so it can be mailed or opened offline.
#pragma once

#include <string>

#include "cli/simulacao.h"

namespace lumavox::cli {

std::string SimulacaoHtml(const Simulacao& s, const Figuras& f);

}  // namespace lumavox::cli
