// The level curve of `simular --curva`: lines "HH:MM level" (level 0..100), "#" comments and
// blank lines ignored. The level of a moment is that of the latest point at or before its time
// of day; before the first point the day's last point still holds.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/datas.h"

namespace lumavox::cli {

struct CurvaNivel {
  std::vector<std::pair<int, int>> pontos;  // seconds of the day, level; sorted, never empty
  int NivelEm(DataHora momento) const;
  // The next moment after `momento` at which the level may change.
  DataHora ProximaMudanca(DataHora momento) const;
};

// Raises std::runtime_error naming `origem` and the line when a line does not read, or when
// the text holds no point at all.
CurvaNivel LerCurvaNivel(std::string_view texto, const std::string& origem);

}  // namespace lumavox::cli
