// Recorded collection loads kept on disk between runs, so a one-shot run (a `select`, a
// simulation's first load) writes a load again instead of decoding lxdb.rdb. A record is
// trusted only for the very inputs it was made from (the versions of lxdb.rdb and of the media
// folder) and only by the build that made it; anything else, a damaged or foreign file
// included, is no record at all and the collection is read from the station's files.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/sistema_arquivos.h"
#include "stores/acervo.h"

namespace lumavox {

namespace fs = std::filesystem;

// What one load read: the collection file and the media folder, as Versao tells them.
struct InsumosGravacao {
  VersaoArquivo lxdb, mre;
  bool operator==(const InsumosGravacao&) const = default;
};

// The running program's build identity (its GNU build ID), or empty when it has none: a
// record made by another build may hold what another decoder read.
const std::string& IdentidadeDoPrograma();

// The record's bytes, and back. Ler gives nothing for bytes that are not a whole, undamaged
// record of these inputs made by this identity.
std::string SerializarGravacao(const GravacaoAcervo& gravacao, const InsumosGravacao& insumos,
                               std::string_view identidade);
std::optional<GravacaoAcervo> LerGravacao(std::string_view bytes, const InsumosGravacao& insumos,
                                          std::string_view identidade);

// A folder of records, one file per collection file, the oldest removed past a few. Failures
// never reach the caller: a record that cannot be read or written is simply not there.
class GuardaGravacoes {
 public:
  static constexpr size_t kMaximoArquivos = 16;

  GuardaGravacoes(SistemaArquivos& arquivos, fs::path pasta, std::string identidade = IdentidadeDoPrograma());

  std::optional<GravacaoAcervo> Buscar(const InsumosGravacao& insumos) noexcept;
  // Written under a temporary name and renamed into place, so a reader finds the old record,
  // the new one or none, never half of one.
  void Guardar(const InsumosGravacao& insumos, const GravacaoAcervo& gravacao) noexcept;

  fs::path Arquivo(const InsumosGravacao& insumos) const;

 private:
  void Podar() noexcept;

  SistemaArquivos& arquivos_;
  fs::path pasta_;
  std::string identidade_;
};

// The folder for records of this user: LUMAVOX_CACHE when set (empty turns records off), else
// the service's CACHE_DIRECTORY, else $XDG_CACHE_HOME/lumavox, else ~/.cache/lumavox.
std::optional<fs::path> PastaGravacoesDoUsuario();

}  // namespace lumavox
