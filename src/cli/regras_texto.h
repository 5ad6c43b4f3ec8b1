// The rules files as readable text (TOML) and back. Text made from a file writes the same file
// again byte for byte (stores/arquivo_regras.h keeps how each line was written).
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/texto.h"
#include "stores/arquivo_regras.h"
#include "stores/catalogo.h"

namespace lumavox::cli {

namespace fs = std::filesystem;

// Names of the 14 lines of a rule in the text form, in file order.
extern const std::array<std::string_view, kLinhasPorRegra> kChavesLinhas;

// The text form: a header comment, then one [conjuntoN] table per set.
std::string CabecalhoToml();
std::string ConjuntoParaToml(const ConjuntoLido& c);

// Parses the text form. Raises std::runtime_error with "<origem>:<linha>: <cause>" when the
// text is not TOML, names an unknown key, has a value of the wrong type or more than 256 rules.
std::vector<ConjuntoLido> LerTomlRegras(std::string_view texto, const std::string& origem);

}  // namespace lumavox::cli
