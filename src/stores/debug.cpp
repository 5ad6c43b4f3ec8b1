#include "stores/debug.h"

#include "base/arquivos.h"

namespace lumavox {

void EscreverDebug(const std::filesystem::path& caminhoApp, std::u16string_view texto) {
  EscreverLinha(caminhoApp / "debuglog.rer", texto);
}

}  // namespace lumavox
