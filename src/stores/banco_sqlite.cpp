#include "stores/banco_sqlite.h"

#include <sqlite3.h>

#include <string>

#include "base/erro.h"

namespace lumavox {

namespace {

constexpr const char* kEsquema =
    "CREATE TABLE IF NOT EXISTS Logs (Codigo INTEGER PRIMARY KEY, Musica INTEGER, Data TEXT, "
    "Tipo INTEGER);"
    "CREATE VIEW IF NOT EXISTS VIEWLogs AS SELECT Tipo, Musica, COUNT(*) AS NReg FROM Logs "
    "GROUP BY Tipo, Musica;";

// The player waits this long for the engine's brief reads instead of failing a write.
constexpr int kEsperaEscritaMs = 2000;

[[noreturn]] void ErroBanco(sqlite3* db, const std::string& acao) {
  throw ErroExecucao(CodigoErro::ErroDeEntradaSaida,
                     acao + ": " + (db ? sqlite3_errmsg(db) : "out of memory"));
}

}  // namespace

BancoLogs::BancoLogs(const fs::path& arquivo) {
  const std::string caminho = arquivo.string();
  if (sqlite3_open_v2(caminho.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
      SQLITE_OK) {
    const std::string causa =
        "opening " + caminho + ": " + (db_ ? sqlite3_errmsg(db_) : "out of memory");
    sqlite3_close(db_);
    throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, causa);
  }
  sqlite3_busy_timeout(db_, kEsperaEscritaMs);
  try {
    // Write-ahead logging, kept by the file once set: the engine's reads never hold up the
    // player's writes, nor the writes the reads.
    Executar("PRAGMA journal_mode=WAL;");
    Executar(kEsquema);
  } catch (...) {
    sqlite3_close(db_);
    throw;
  }
}

BancoLogs::~BancoLogs() { sqlite3_close(db_); }

void BancoLogs::Executar(const char* sql) {
  if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    ErroBanco(db_, "writing the log database");
}

void BancoLogs::Registrar(const RegistroLog& registro) {
  Registrar(std::vector<RegistroLog>{registro});
}

void BancoLogs::Registrar(const std::vector<RegistroLog>& registros) {
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db_, "INSERT INTO Logs (Musica, Data, Tipo) VALUES (?, ?, ?)", -1, &st,
                         nullptr) != SQLITE_OK)
    ErroBanco(db_, "writing the log database");
  try {
    Executar("BEGIN IMMEDIATE");
    for (const RegistroLog& r : registros) {
      const std::string data = FormatarIso(r.data);
      sqlite3_bind_int(st, 1, r.musica);
      sqlite3_bind_text(st, 2, data.c_str(), static_cast<int>(data.size()), SQLITE_TRANSIENT);
      sqlite3_bind_int(st, 3, r.tipo);
      if (sqlite3_step(st) != SQLITE_DONE) ErroBanco(db_, "writing the log database");
      sqlite3_reset(st);
    }
    Executar("COMMIT");
  } catch (...) {
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_finalize(st);
    throw;
  }
  sqlite3_finalize(st);
}

void CriarBancoLogs(const fs::path& arquivo) { BancoLogs banco(arquivo); }

}  // namespace lumavox
