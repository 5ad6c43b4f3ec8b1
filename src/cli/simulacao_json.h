// The simulation as the JSON document of `simular --json`: the run's settings and totals, the
// figures, each rule's outcomes, the level changes, the whole sequence of plays, the play counts
// and the spacing of artists and titles. Keys keep their order, new ones after the old; a
// shortest repeat that never happened is null.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/simulacao.h"

namespace lumavox::cli {

nlohmann::ordered_json SimulacaoJson(const Simulacao& s, const Figuras& f);

}  // namespace lumavox::cli
