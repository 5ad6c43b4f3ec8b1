#include "stores/saida.h"

#include <algorithm>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"

namespace lumavox {

std::optional<Texto> LerPrimeiraLinha(const fs::path& arquivo) {
  try {
    std::vector<Texto> linhas = LerLinhas(arquivo);
    // Reading a line from an empty file is an error, not an empty line.
    if (linhas.empty()) return std::nullopt;
    return std::move(linhas.front());
  } catch (const ErroExecucao&) {
    return std::nullopt;
  }
}

bool GerarArquivoSaida(const fs::path& origem, int64_t contador, const fs::path& pasta) {
  if (!ArquivoExiste(origem)) return false;
  try {
    std::string bytes = LerBytes(origem);
    for (char& b : bytes) b = static_cast<char>(255 - static_cast<unsigned char>(b));
    EscreverBytes(pasta / "temp" / NomeArquivoTemp(contador), bytes);
    return true;
  } catch (const ErroExecucao&) {
    return false;
  }
}

std::string NomeArquivoTemp(int64_t contador) { return FormatarZeros(contador, 6) + ".mrt"; }

std::string NomeArquivoFila(int64_t contador, int32_t codigo, int nivel) {
  return FormatarZeros(contador, 6) + "_" + FormatarZeros(codigo, 7) + "_" + FormatarZeros(nivel, 3) + ".lre";
}

bool EscreverFila(const fs::path& pasta, const std::string& nome, int32_t codigo) {
  try {
    EscreverLinha(pasta / "list" / nome, DeUtf8(std::to_string(codigo)));
    return true;
  } catch (const ErroExecucao&) {
    return false;
  }
}

std::vector<fs::path> ListarArquivos(const fs::path& pasta, const std::string& extensao) {
  std::vector<fs::path> arquivos;
  std::error_code ec;
  for (fs::directory_iterator it(pasta, ec), fim; !ec && it != fim; it.increment(ec)) {
    const std::string nome = it->path().filename().string();
    if (nome.size() >= extensao.size() &&
        nome.compare(nome.size() - extensao.size(), extensao.size(), extensao) == 0 &&
        it->is_regular_file(ec))
      arquivos.push_back(it->path());
  }
  std::sort(arquivos.begin(), arquivos.end());
  return arquivos;
}

bool ApagarArquivo(const fs::path& arquivo) {
  std::error_code ec;
  return fs::remove(arquivo, ec) && !ec;
}

void ApagarArquivos(const std::vector<fs::path>& arquivos) {
  for (auto it = arquivos.rbegin(); it != arquivos.rend(); ++it) ApagarArquivo(*it);
}

}  // namespace lumavox
