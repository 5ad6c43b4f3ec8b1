// The scratch copy a simulation runs on, and the file system the engine and the stand-in
// player see during the run. The station's text files (collections, rules, playlist and
// schedule tables) are held in memory, where a simulated day's tens of thousands of file
// operations cost no system call; a collection file with a version stays at the station until
// the engine reads it, which a recorded load spares. The log databases are copied to a
// temporary folder on disk, as their libraries open their own files. In the copy's media folder
// stands an empty file for each song the station has media for, as one listing at the start
// found them, so a load keeps the same songs without copying gigabytes of audio.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "base/sistema_arquivos.h"
#include "base/sistema_arquivos_memoria.h"

namespace lumavox::cli {

class CopiaDaEstacao final : public SistemaArquivos {
 public:
  // Raises when the temporary folder cannot be made or a file cannot be copied.
  explicit CopiaDaEstacao(const fs::path& estacao);
  // The temporary folder goes with the copy.
  ~CopiaDaEstacao() override;
  CopiaDaEstacao(const CopiaDaEstacao&) = delete;
  CopiaDaEstacao& operator=(const CopiaDaEstacao&) = delete;

  // The copy's folder: the engine's application folder during the run.
  const fs::path& Pasta() const { return pasta_; }

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
  // The station's version for a collection file copied whole and the media folder, so a record
  // of the station's load serves the copy; none for the copy's other files.
  std::optional<VersaoArquivo> Versao(const fs::path& caminho) noexcept override;

 private:
  void Copiar(const fs::path& de, const fs::path& para, bool raiz);
  // Where a path of the run lives: the copy's files in memory, anything else on the disk.
  SistemaArquivos& Onde(const fs::path& caminho) noexcept;
  // Brings a collection file left at the station into the copy, before its bytes or its mark
  // are looked at.
  void Trazer(const fs::path& caminho);
  // A file of the copy written over or removed is no longer the station's.
  void Esquecer(const fs::path& caminho) noexcept;
  bool PastaMre(std::string_view pasta) const;
  bool Midia(const fs::path& caminho) const;

  SistemaArquivosReal real_;
  SistemaArquivosMemoria memoria_;
  fs::path pasta_, mre_;
  std::string prefixo_;  // the copy's folder and a separator
  std::unordered_set<std::string> midias_;
  std::optional<VersaoArquivo> versaoMre_;
  // By the copy's path, written as CaminhoNormal writes it.
  std::unordered_map<std::string, VersaoArquivo> versoes_;
  std::unordered_map<std::string, fs::path> adiados_;  // -> the station's file
};

}  // namespace lumavox::cli
