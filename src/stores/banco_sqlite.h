// Writing the station's log database as an SQLite file: what the player records after each
// play, and what tests and the demo station use to build one. The engine itself never writes it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "base/datas.h"

struct sqlite3;

namespace lumavox {

namespace fs = std::filesystem;

struct RegistroLog {
  int32_t musica = 0;  // song code
  DataHora data;
  int32_t tipo = 0;  // 0: a play; 4 and 5: marks the rules consult
};

// A read-write connection to a log database, created with its table and view when missing.
// Raises ErroExecucao when the file cannot be opened or written.
class BancoLogs {
 public:
  explicit BancoLogs(const fs::path& arquivo);
  ~BancoLogs();
  BancoLogs(const BancoLogs&) = delete;
  BancoLogs& operator=(const BancoLogs&) = delete;

  // Appends one entry; Codigo numbers it after every earlier one.
  void Registrar(const RegistroLog& registro);
  // Appends all the entries in one transaction: all or none.
  void Registrar(const std::vector<RegistroLog>& registros);

  sqlite3* Conexao() { return db_; }

 private:
  void Executar(const char* sql);
  sqlite3* db_ = nullptr;
};

// Creates the log database with its table Logs and view VIEWLogs; an existing one is kept.
void CriarBancoLogs(const fs::path& arquivo);

}  // namespace lumavox
