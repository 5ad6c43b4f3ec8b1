// The percentage draw of the rules that act by chance.
#pragma once

#include <cmath>

#include "state/estado.h"

namespace lumavox {

// The whole part of (random × 100 + 1), 1 to 100, in single precision like the random source;
// a chance of X percent acts when the draw is at most X.
inline int SortearPercentual(Estado& e) {
  return static_cast<int>(std::floor(e.ambiente->Aleatorio() * 100.0f + 1.0f));
}

}  // namespace lumavox
