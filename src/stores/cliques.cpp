#include "stores/cliques.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"

namespace lumavox {

Cliques LerCliques(SistemaArquivos& arquivos, const fs::path& pastaApp) {
  Cliques c;
  try {
    const std::vector<Texto> linhas = LerLinhas(arquivos, pastaApp / kArquivoCliques);
    if (!linhas.empty()) {
      const double n = ValorNumerico(linhas[0]);
      c.contagem = std::isfinite(n) ? static_cast<int>(std::clamp(n, 0.0, double{kMaximoCliques})) : 0;
    }
    c.pulando = linhas.size() > 1 && ValorNumerico(linhas[1]) != 0;
  } catch (const ErroExecucao&) {
    return Cliques{};
  }
  return c;
}

void GravarCliques(SistemaArquivos& arquivos, const fs::path& pastaApp, const Cliques& c) {
  EscreverInteiro(arquivos, pastaApp / kArquivoCliques,
                  std::to_string(c.contagem) + "\n" + (c.pulando ? "1" : "0") + "\n");
}

Cliques ContarAvanco(Cliques c) {
  c.contagem = std::min(c.contagem + 1, kMaximoCliques);
  c.pulando = true;
  return c;
}

Cliques ContarInicio(Cliques c) {
  if (!c.pulando) c.contagem = 0;
  c.pulando = false;
  return c;
}

}  // namespace lumavox
