// The line encoding of the collection and rules files: one leading character (never examined)
// followed by each character's code in five decimal digits.
#pragma once

#include <string_view>

#include "base/texto.h"

namespace lumavox {

// Groups that are not numbers count as code 0; a code outside 0..65535, or a surrogate that
// is not part of a pair, raises ChamadaInvalida.
Texto DecodificarLinha(std::u16string_view linha);

// The inverse, for tools and tests. The leading character written is "0".
Texto CodificarLinha(std::u16string_view texto);

}  // namespace lumavox
