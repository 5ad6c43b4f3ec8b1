// The line encoding of the collection and rules files: one leading character (never examined)
// followed by each character's code in five decimal digits.
#pragma once

#include <filesystem>
#include <string_view>
#include <functional>

#include "base/sistema_arquivos.h"
#include "base/texto.h"

namespace lumavox {

// Groups that are not numbers count as code 0; a code outside 0..65535, or a surrogate that
// is not part of a pair, raises ChamadaInvalida.
Texto DecodificarLinha(std::u16string_view linha);

// Hands every line of an encoded file to `usar`, decoded, in order (LF or CRLF). Lines are
// decoded one at a time, so a line that does not decode raises after the earlier lines were
// used. Raises too when the file cannot be read.
void ParaCadaLinhaCodificada(SistemaArquivos& arquivos, const std::filesystem::path& arquivo,
                             const std::function<void(Texto&&)>& usar);

// The inverse, for tools and tests. The leading character written is "0".
Texto CodificarLinha(std::u16string_view texto);

}  // namespace lumavox
