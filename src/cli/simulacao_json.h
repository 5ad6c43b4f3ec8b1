// The simulation as the JSON document of `simular --json`: the run's settings and totals, the
// figures, each rule's outcomes, the level changes, the whole sequence of plays, the play counts
// and the spacing of artists and titles. Keys keep their order, new ones after the old; a
// shortest repeat that never happened is null.
#pragma once

#include <nlohmann/json.hpp>

#include "cli/simulacao.h"

namespace lumavox::cli {

nlohmann::ordered_json SimulacaoJson(const Simulacao& s, const Figuras& f);

// The station check as `conferir --json` writes it: a list of {nivel, arquivo, linha, mensagem},
// linha null for a finding about a whole file.
nlohmann::ordered_json ConferenciaJson(const std::vector<Constatacao>& lista);

}  // namespace lumavox::cli
