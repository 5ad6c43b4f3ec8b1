// Writing the station's log database as an SQLite file: what the player records after each
// play, and what tests and the demo station use to build one. The engine itself never writes it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "base/datas.h"
#include "stores/historico_fonte.h"

struct sqlite3;
struct sqlite3_stmt;

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
  // Fills an empty Logs with rows given whole as (Codigo, Musica, Data, Tipo), each keeping its
  // Codigo: Null stays Null, whole numbers are integers, other numbers reals, dates FormatarIso
  // text, texts text. All in one transaction, which `conferir` sees before it is committed and
  // may raise to keep none of it. Raises ErroExecucao, keeping nothing, when Logs already holds
  // an entry, or a Codigo is not a whole number or repeats.
  void Preencher(const std::vector<LinhaBanco>& linhas, const std::function<void()>& conferir = {});

  sqlite3* Conexao() { return db_; }

 private:
  void Executar(const char* sql);
  // `st`, prepared on first use and kept: the player writes one entry a song for months.
  sqlite3_stmt* Preparada(sqlite3_stmt*& st, const char* sql);
  // Runs a statement that gives no rows, leaving it ready to run again.
  void Passo(sqlite3_stmt* st);
  // Runs `corpo` with `insercao` in one transaction: committed when it returns, rolled back when
  // it raises.
  void EmTransacao(sqlite3_stmt* insercao, const std::function<void(sqlite3_stmt*)>& corpo);
  sqlite3* db_ = nullptr;
  sqlite3_stmt* inicio_ = nullptr;
  sqlite3_stmt* fim_ = nullptr;
  sqlite3_stmt* insercao_ = nullptr;
};

// Creates the log database with its table Logs and view VIEWLogs; an existing one is kept.
void CriarBancoLogs(const fs::path& arquivo);

// The entries in Logs of an existing log database, 0 when it has no such table. The file is
// left byte for byte as it was. Raises ErroExecucao when it is missing or not a database.
int64_t ContarRegistrosLogs(const fs::path& arquivo);

}  // namespace lumavox
