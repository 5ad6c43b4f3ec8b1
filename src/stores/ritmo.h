// Rhythm values: a "Velocidade"/"Ritmo"-like tag as a number from about 1 (calm) to 9 (lively).
#pragma once

#include <string_view>

namespace lumavox {

// Numeric text (or empty) gives its value; a fixed table of exact texts comes next; any other
// text is read as words ended by ";", averaging Calmo/Normal/Animado and then adding the
// mood words. Comparisons are exact and case-sensitive.
double ValorRitmo(std::u16string_view valor);

}  // namespace lumavox
