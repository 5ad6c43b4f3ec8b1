#include "stores/saida.h"

#include <algorithm>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"
#include "stores/fila.h"

namespace lumavox {

std::optional<Texto> LerPrimeiraLinha(SistemaArquivos& arquivos, const fs::path& arquivo) {
  try {
    std::vector<Texto> linhas = LerLinhas(arquivos, arquivo);
    // Reading a line from an empty file is an error, not an empty line.
    if (linhas.empty()) return std::nullopt;
    return std::move(linhas.front());
  } catch (const ErroExecucao&) {
    return std::nullopt;
  }
}

bool GerarArquivoSaida(SistemaArquivos& arquivos, const fs::path& origem, int64_t contador,
                       const fs::path& pasta, std::string* erro) {
  if (!arquivos.ArquivoExiste(origem)) return false;
  std::string bytes;
  try {
    bytes = arquivos.LerBytes(origem);
  } catch (const ErroExecucao& e) {
    if (erro && e.Codigo() != CodigoErro::ArquivoNaoEncontrado) *erro = e.what();
    return false;
  }
  ComplementarBytes(bytes);
  try {
    EscreverInteiro(arquivos, pasta / "temp" / NomeArquivoTemp(contador), bytes);
    return true;
  } catch (const ErroExecucao& e) {
    if (erro) *erro = e.what();
    return false;
  }
}

std::string NomeArquivoTemp(int64_t contador) { return FormatarZeros(contador, 6) + ".mrt"; }

std::string NomeArquivoFila(int64_t contador, int32_t codigo, int nivel) {
  return FormatarZeros(contador, 6) + "_" + FormatarZeros(codigo, 7) + "_" + FormatarZeros(nivel, 3) + ".lre";
}

bool EscreverFila(SistemaArquivos& arquivos, const fs::path& pasta, const std::string& nome, int32_t codigo,
                  std::string* erro) {
  try {
    EscreverLinhaInteira(arquivos, pasta / "list" / nome, DeUtf8(std::to_string(codigo)));
    return true;
  } catch (const ErroExecucao& e) {
    if (erro) *erro = e.what();
    return false;
  }
}

std::vector<fs::path> ListarArquivos(SistemaArquivos& arquivos, const fs::path& pasta, const std::string& extensao) {
  std::vector<fs::path> lista = arquivos.Listar(pasta, extensao);
  std::sort(lista.begin(), lista.end());
  return lista;
}

bool ApagarArquivo(SistemaArquivos& arquivos, const fs::path& arquivo) { return arquivos.Apagar(arquivo); }

void ApagarArquivos(SistemaArquivos& arquivos, const std::vector<fs::path>& lista) {
  for (auto it = lista.rbegin(); it != lista.rend(); ++it) arquivos.Apagar(*it);
}

}  // namespace lumavox
