// Where the engine's history comes from at a station: "lumavox.mdb" in the application folder
// when the station still keeps its Jet log database, else the SQLite "lumavox.db". With
// neither, the load finds nothing to open and the history keeps what it had.
#pragma once

#include <filesystem>
#include <memory>

#include "stores/historico.h"
#include "stores/historico_fonte.h"

namespace lumavox {

namespace fs = std::filesystem;

// The log database of the application folder, chosen as above (not opened yet).
std::unique_ptr<FonteLogs> FonteLogsDaPasta(const fs::path& caminhoApp);

// Installed with Motor::DefinirOrigemHistorico; each load opens the database anew and
// releases it at the end. With `manterConexao` an SQLite log stays open from one load to the
// next (FonteLogsSqlite's `manterAberta`): for a simulation's scratch copy, reloaded every few
// songs, that no other program reads.
class OrigemHistoricoBanco : public OrigemHistorico {
 public:
  explicit OrigemHistoricoBanco(fs::path caminhoApp, bool manterConexao = false)
      : caminhoApp_(std::move(caminhoApp)), manterConexao_(manterConexao) {}
  void CarregarMusicasTocadas(Historico& historico, const Acervo& acervo) override;

 private:
  fs::path caminhoApp_;
  bool manterConexao_;
  std::unique_ptr<FonteLogs> mantida_;
};

}  // namespace lumavox
