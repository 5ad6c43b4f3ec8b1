#include "stores/debug.h"

#include "base/arquivos.h"

namespace lumavox {

void EscreverDebug(SistemaArquivos& arquivos, const std::filesystem::path& caminhoApp,
                  std::u16string_view texto) {
  EscreverLinha(arquivos, caminhoApp / "debuglog.rer", texto);
}

}  // namespace lumavox
