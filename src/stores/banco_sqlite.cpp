#include "stores/banco_sqlite.h"

#include <sqlite3.h>

#include <cmath>
#include <memory>
#include <string>

#include "base/erro.h"

namespace lumavox {

namespace {

constexpr const char* kEsquema =
    "CREATE TABLE IF NOT EXISTS Logs (Codigo INTEGER PRIMARY KEY, Musica INTEGER, Data TEXT, "
    "Tipo INTEGER);"
    "CREATE VIEW IF NOT EXISTS VIEWLogs AS SELECT Tipo, Musica, COUNT(*) AS NReg FROM Logs "
    "GROUP BY Tipo, Musica;"
    // Each of the engine's three queries picks one entry type and reads only what these hold,
    // in the order it asks for: the latest plays by counter, the other types by song and date.
    "DROP INDEX IF EXISTS LogsTipo;"
    "CREATE INDEX IF NOT EXISTS LogsTipoCodigo ON Logs (Tipo, Codigo, Musica, Data);"
    "CREATE INDEX IF NOT EXISTS LogsTipoMusica ON Logs (Tipo, Musica, Data DESC);";

// The player waits this long for the engine's brief reads instead of failing a write.
constexpr int kEsperaEscritaMs = 2000;

[[noreturn]] void ErroBanco(sqlite3* db, const std::string& acao) {
  throw ErroExecucao(CodigoErro::ErroDeEntradaSaida,
                     acao + ": " + (db ? sqlite3_errmsg(db) : "out of memory"));
}

// One value as the log keeps it: whole numbers as the integers the player writes, dates as the
// text the reader parses.
void Vincular(sqlite3_stmt* st, int coluna, const ValorBanco& valor) {
  std::string texto;
  if (const double* n = std::get_if<double>(&valor)) {
    if (std::trunc(*n) == *n && std::fabs(*n) < 9e18) {
      sqlite3_bind_int64(st, coluna, static_cast<sqlite3_int64>(*n));
    } else {
      sqlite3_bind_double(st, coluna, *n);
    }
    return;
  }
  if (const DataHora* d = std::get_if<DataHora>(&valor)) {
    texto = FormatarIso(*d);
  } else if (const Texto* t = std::get_if<Texto>(&valor)) {
    texto = ParaUtf8(*t);
  } else {
    sqlite3_bind_null(st, coluna);
    return;
  }
  sqlite3_bind_text(st, coluna, texto.c_str(), static_cast<int>(texto.size()), SQLITE_TRANSIENT);
}

// The one number `sql` gives.
int64_t Escalar(sqlite3* db, const char* sql) {
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK ||
      sqlite3_step(st) != SQLITE_ROW) {
    sqlite3_finalize(st);
    ErroBanco(db, "reading the log database");
  }
  const int64_t n = sqlite3_column_int64(st, 0);
  sqlite3_finalize(st);
  return n;
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

BancoLogs::~BancoLogs() {
  for (sqlite3_stmt* st : {inicio_, fim_, insercao_}) sqlite3_finalize(st);
  sqlite3_close(db_);
}

void BancoLogs::Executar(const char* sql) {
  if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    ErroBanco(db_, "writing the log database");
}

void BancoLogs::Registrar(const RegistroLog& registro) {
  Registrar(std::vector<RegistroLog>{registro});
}

sqlite3_stmt* BancoLogs::Preparada(sqlite3_stmt*& st, const char* sql) {
  if (!st && sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &st, nullptr) != SQLITE_OK) {
    sqlite3_finalize(st);
    st = nullptr;
    ErroBanco(db_, "writing the log database");
  }
  return st;
}

void BancoLogs::Passo(sqlite3_stmt* st) {
  if (sqlite3_step(st) == SQLITE_DONE) {
    sqlite3_reset(st);
    return;
  }
  const std::string causa = std::string("writing the log database: ") + sqlite3_errmsg(db_);
  sqlite3_reset(st);
  throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, causa);
}

void BancoLogs::EmTransacao(sqlite3_stmt* insercao, const std::function<void(sqlite3_stmt*)>& corpo) {
  try {
    Passo(Preparada(inicio_, "BEGIN IMMEDIATE"));
    corpo(insercao);
    Passo(Preparada(fim_, "COMMIT"));
  } catch (...) {
    sqlite3_reset(insercao);
    sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void BancoLogs::Registrar(const std::vector<RegistroLog>& registros) {
  sqlite3_stmt* insercao = Preparada(insercao_, "INSERT INTO Logs (Musica, Data, Tipo) VALUES (?, ?, ?)");
  EmTransacao(insercao, [&](sqlite3_stmt* st) {
    for (const RegistroLog& r : registros) {
      const std::string data = FormatarIso(r.data);
      sqlite3_bind_int(st, 1, r.musica);
      sqlite3_bind_text(st, 2, data.c_str(), static_cast<int>(data.size()), SQLITE_TRANSIENT);
      sqlite3_bind_int(st, 3, r.tipo);
      Passo(st);
    }
  });
}

void BancoLogs::Preencher(const std::vector<LinhaBanco>& linhas,
                          const std::function<void()>& conferir) {
  sqlite3_stmt* insercao = nullptr;
  Preparada(insercao, "INSERT INTO Logs (Codigo, Musica, Data, Tipo) VALUES (?, ?, ?, ?)");
  // Finalized however the transaction ends: a conversion runs once.
  const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> dono(insercao, sqlite3_finalize);
  EmTransacao(insercao, [&](sqlite3_stmt* st) {
    // Counted inside the transaction, so an entry the player adds meanwhile is not mixed in.
    if (Escalar(db_, "SELECT count(*) FROM Logs") > 0)
      throw ErroExecucao(CodigoErro::ChamadaInvalida, "the log database already holds entries");
    for (size_t i = 0; i < linhas.size(); ++i) {
      const LinhaBanco& linha = linhas[i];
      const std::string onde = "row " + std::to_string(i + 1) + " of the log";
      // SQLite would number a Null Codigo itself, and refuses a fraction: either would change
      // the order of the plays.
      const double* codigo = linha.size() == 4 ? std::get_if<double>(&linha[0]) : nullptr;
      if (!codigo || std::trunc(*codigo) != *codigo)
        throw ErroExecucao(CodigoErro::TiposIncompativeis, onde + ": Codigo is not a whole number");
      for (int c = 0; c < 4; ++c) Vincular(st, c + 1, linha[static_cast<size_t>(c)]);
      if (sqlite3_step(st) != SQLITE_DONE) ErroBanco(db_, "writing " + onde);
      sqlite3_reset(st);
    }
    if (conferir) conferir();
  });
}

void CriarBancoLogs(const fs::path& arquivo) { BancoLogs banco(arquivo); }

int64_t ContarRegistrosLogs(const fs::path& arquivo) {
  const std::string caminho = arquivo.string();
  sqlite3* db = nullptr;
  // Read-write though it only reads: as the last connection to close it takes away the -wal
  // and -shm files that opening a database in write-ahead mode makes, which a read-only one
  // would leave behind.
  if (sqlite3_open_v2(caminho.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
    const std::string causa =
        "opening " + caminho + ": " + (db ? sqlite3_errmsg(db) : "out of memory");
    sqlite3_close(db);
    throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, causa);
  }
  sqlite3_busy_timeout(db, kEsperaEscritaMs);
  try {
    const char* temLogs =
        "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = 'Logs'";
    const int64_t n = Escalar(db, temLogs) > 0 ? Escalar(db, "SELECT count(*) FROM Logs") : 0;
    sqlite3_close(db);
    return n;
  } catch (...) {
    sqlite3_close(db);
    throw;
  }
}

}  // namespace lumavox
