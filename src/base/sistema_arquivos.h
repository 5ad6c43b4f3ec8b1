// Every file operation the engine makes, behind one interface, so that tests can fill the disk,
// refuse a rename or take a file away at a chosen moment, and the engine never knows. The
// engine reaches files only through the SistemaArquivos its Ambiente gives it; the log
// databases are the exception, as their libraries open their own files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/erro.h"

namespace lumavox {

namespace fs = std::filesystem;

// What tells one version of a small exchange file from the next: its write time and size.
using MarcaArquivo = std::pair<fs::file_time_type, std::uintmax_t>;

// What tells one content of a file (or one set of entries of a folder) from another: where it
// lives, its size and the times of its last write and last change, to the nanosecond.
struct VersaoArquivo {
  uint64_t dispositivo = 0, inode = 0, tamanho = 0;
  int64_t modificadoNs = 0, mudadoNs = 0;
  bool operator==(const VersaoArquivo&) const = default;
};

class SistemaArquivos {
 public:
  virtual ~SistemaArquivos() = default;

  // The whole file. Raises ErroExecucao: ArquivoNaoEncontrado, PermissaoNegada or
  // ErroDeEntradaSaida.
  virtual std::string LerBytes(const fs::path& caminho) = 0;
  // Creates or truncates the file and writes `bytes`; raises as LerBytes. A write that fails
  // part-way leaves the file with what reached the disk. For a file another program may take at
  // any moment, EscreverInteiro (base/arquivos.h) builds on this.
  virtual void EscreverBytes(const fs::path& caminho, std::string_view bytes) = 0;
  // Waits until the file's bytes, or a folder's entries, are on the disk itself, so they outlast
  // a power cut; raises as LerBytes.
  virtual void Sincronizar(const fs::path& caminho) = 0;
  // Replaces `para` if it exists; raises as LerBytes, leaving both names as they were.
  virtual void Renomear(const fs::path& de, const fs::path& para) = 0;
  // False when nothing was deleted: the file was missing or could not be removed.
  virtual bool Apagar(const fs::path& caminho) noexcept = 0;
  // True for a regular file (or a link to one).
  virtual bool ArquivoExiste(const fs::path& caminho) noexcept = 0;
  // The regular files directly in `pasta` whose names end in `terminacao`, in no particular
  // order. Empty when the folder cannot be read; an entry whose type cannot be read is left
  // out.
  virtual std::vector<fs::path> Listar(const fs::path& pasta, std::string_view terminacao) = 0;
  // The names alone of what Listar finds, for folders of thousands of files where building a
  // path for each costs more than reading the folder.
  virtual std::vector<std::string> ListarNomes(const fs::path& pasta, std::string_view terminacao);
  // Makes the folder and its parents; false when it could not.
  virtual bool CriarPastas(const fs::path& pasta) noexcept = 0;
  // Write time and size, or nothing when either cannot be read.
  virtual std::optional<MarcaArquivo> Marca(const fs::path& caminho) noexcept = 0;
  // The version of a file or folder, or nothing when it cannot be told apart from the next one:
  // a file system that keeps no such times, or one written so recently that another write in
  // the same tick of the file system's clock could leave every time unchanged. Callers read
  // the file again whenever this is nothing or differs.
  virtual std::optional<VersaoArquivo> Versao(const fs::path&) noexcept { return std::nullopt; }

 protected:
  // The paths of `nomes` in `pasta`: Listar for file systems that list names first.
  static std::vector<fs::path> NaPasta(const fs::path& pasta, const std::vector<std::string>& nomes);
};

// The machine's own file system.
class SistemaArquivosReal final : public SistemaArquivos {
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
  std::optional<VersaoArquivo> Versao(const fs::path& caminho) noexcept override;
};

// The one real file system of the process, for whoever is not handed another.
SistemaArquivos& ArquivosReais();

// The error a file operation raises when the system answered `numeroErro` (an errno value):
// its code follows the cause, its text names the action, the file and the cause.
ErroExecucao ErroDeArquivo(int numeroErro, const char* acao, const fs::path& caminho);

}  // namespace lumavox
