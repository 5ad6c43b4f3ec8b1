// A file system held in memory, for files no other program reads: the simulator's scratch copy
// of a station, where a simulated day makes tens of thousands of file operations that need
// neither the disk nor the kernel. It answers as the machine's own file system does, errors
// included; a file's write time is a counter that moves at every write, so each write shows.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/sistema_arquivos.h"

namespace lumavox {

// The path as the memory keeps it: lexically normal, without a final separator ("a//b/./c/"
// and "a/b/c" are one file).
std::string CaminhoNormal(const fs::path& caminho);

class SistemaArquivosMemoria final : public SistemaArquivos {
 public:
  std::string LerBytes(const fs::path& caminho) override;
  void EscreverBytes(const fs::path& caminho, std::string_view bytes) override;
  void Sincronizar(const fs::path& caminho) override;
  void Renomear(const fs::path& de, const fs::path& para) override;
  bool Apagar(const fs::path& caminho) noexcept override;
  bool ArquivoExiste(const fs::path& caminho) noexcept override;
  std::vector<fs::path> Listar(const fs::path& pasta, std::string_view terminacao) override;
  std::vector<std::string> ListarNomes(const fs::path& pasta, std::string_view terminacao) override;
  bool CriarPastas(const fs::path& pasta) noexcept override;
  std::optional<MarcaArquivo> Marca(const fs::path& caminho) noexcept override;
  // Nothing: a file in memory lasts one run, so no version of it is worth keeping.
  std::optional<VersaoArquivo> Versao(const fs::path&) noexcept override { return std::nullopt; }

  // Takes a file's bytes as they are, for filling the memory without a copy.
  void Guardar(const fs::path& caminho, std::string&& bytes);

 private:
  struct Arquivo {
    std::string bytes;
    int64_t escrito = 0;
  };
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept { return std::hash<std::string_view>{}(s); }
  };
  // A folder's files by name.
  using Pasta = std::map<std::string, Arquivo, std::less<>>;

  Pasta* PastaDe(std::string_view pasta);
  Arquivo* ArquivoEm(std::string_view caminho);

  // Every folder by its path written lexically normal, without a final separator.
  std::unordered_map<std::string, Pasta, Hash, std::equal_to<>> pastas_;
  int64_t relogio_ = 0;
};

}  // namespace lumavox
