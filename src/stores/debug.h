// The debug trace: debuglog.rer in the application folder holds only the latest line, so it
// shows where a load stopped. Callers check the debug mode themselves.
#pragma once

#include <filesystem>
#include <string_view>

#include "base/sistema_arquivos.h"

namespace lumavox {

// Recreates the file with `texto` as its only line; raises when the file cannot be written.
void EscreverDebug(SistemaArquivos& arquivos, const std::filesystem::path& caminhoApp,
                  std::u16string_view texto);

}  // namespace lumavox
