// A Jet 4 file holding one table, written as libmdb reads it: enough to give the engine and
// the tools a station's lumavox.mdb with a Logs table, which no Jet writer on this system can
// make. No indexes; columns of the types below; values of each column's kind or Null.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "stores/historico_fonte.h"

namespace lumavox::teste {

namespace fs = std::filesystem;

// The numbers Jet gives these column types.
enum class TipoJet : uint8_t { Inteiro = 3, Longo = 4, DataHora = 8, Texto = 10, Ole = 11 };

struct ColunaJet {
  std::string nome;
  TipoJet tipo;
};

void GravarJet(const fs::path& arquivo, const std::string& tabela,
               const std::vector<ColunaJet>& colunas, const std::vector<LinhaBanco>& linhas);

}  // namespace lumavox::teste
