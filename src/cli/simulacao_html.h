// The simulation report as one self-contained HTML page: summary, the plots as inline SVG and
// the tables of play counts, spacing, most played songs, rule outcomes and warnings; with a
// second run under other rules, the two side by side first. Nothing is loaded from outside the
// file, so it can be mailed or opened offline.
#pragma once

#include <string>

#include "cli/simulacao.h"

namespace lumavox::cli {

// The same period run again with other rules, named by their file.
struct Alternativa {
  const Simulacao& sim;
  const Figuras& figuras;
  std::string nome;
};

std::string SimulacaoHtml(const Simulacao& s, const Figuras& f,
                          const Alternativa* alternativa = nullptr);

}  // namespace lumavox::cli
