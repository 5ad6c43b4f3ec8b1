#include "stores/historico_banco.h"

#include <system_error>

#include "stores/historico_mdb.h"
#include "stores/historico_sqlite.h"

namespace lumavox {

std::unique_ptr<FonteLogs> FonteLogsDaPasta(const fs::path& caminhoApp) {
  std::error_code erro;
  const fs::path mdb = caminhoApp / kArquivoLogsMdb;
  if (fs::exists(mdb, erro)) return std::make_unique<FonteLogsMdb>(mdb);
  return std::make_unique<FonteLogsSqlite>(caminhoApp / kArquivoLogsSqlite);
}

void OrigemHistoricoBanco::CarregarMusicasTocadas(Historico& historico, const Acervo& acervo) {
  std::error_code erro;
  if (manterConexao_ && !fs::exists(caminhoApp_ / kArquivoLogsMdb, erro)) {
    if (!mantida_) mantida_ = std::make_unique<FonteLogsSqlite>(caminhoApp_ / kArquivoLogsSqlite, false, true);
    lumavox::CarregarMusicasTocadas(historico, acervo, *mantida_);
    return;
  }
  mantida_.reset();
  auto fonte = FonteLogsDaPasta(caminhoApp_);
  lumavox::CarregarMusicasTocadas(historico, acervo, *fonte);
}

}  // namespace lumavox
