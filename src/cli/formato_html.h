// Small text pieces shared by the simulation report's page and its plots.
#pragma once

#include <string>
#include <string_view>

#include "base/datas.h"

namespace lumavox::cli {

// The text with &, <, > and " as entities: safe inside elements and quoted attributes.
std::string EscaparHtml(std::string_view texto);
// Fixed `casas` decimals with the Brazilian comma ("7,5").
std::string NumeroComVirgula(double v, int casas = 1);
// "HH:MM" of the moment.
std::string HoraMinuto(DataHora d);

}  // namespace lumavox::cli
