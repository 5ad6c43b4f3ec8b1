// The station's log database as an SQLite file, "lumavox.db" in the application folder:
//   CREATE TABLE Logs (Codigo INTEGER PRIMARY KEY, Musica INTEGER, Data TEXT, Tipo INTEGER);
//   CREATE VIEW VIEWLogs AS SELECT Tipo, Musica, COUNT(*) AS NReg FROM Logs GROUP BY Tipo, Musica;
// Data is local time "YYYY-MM-DD HH:MM:SS". The engine only reads it: the file is opened
// read-only and never created, and a writer's lock is waited for briefly before giving up.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "stores/historico_fonte.h"

struct sqlite3;
struct sqlite3_stmt;

namespace lumavox {

namespace fs = std::filesystem;

inline constexpr const char* kArquivoLogsSqlite = "lumavox.db";
inline constexpr int kEsperaBloqueioMs = 300;

inline constexpr const char* kSqlTocadas =
    "SELECT Codigo, Musica, Data FROM Logs WHERE Tipo = 0 ORDER BY Codigo DESC LIMIT 500";
inline constexpr const char* kSqlTipo4 =
    "SELECT Tipo, Musica, NReg FROM VIEWLogs WHERE Tipo = 4 ORDER BY Musica";
inline constexpr const char* kSqlTipo5 =
    "SELECT Tipo, Musica, Data FROM Logs WHERE Tipo = 5 ORDER BY Musica, Data DESC";

// One of the three queries on an open connection. Raises ErroExecucao when it cannot run.
// `datasLidas`: a Data text in the log writer's form comes as the date it names, as DataDoValor
// would read it; else every text comes as it is stored. FonteLogsSqlite reads dates.
std::unique_ptr<CursorLogs> ConsultarLogsSqlite(sqlite3* db, ConsultaLogs consulta, bool datasLidas = false);

class FonteLogsSqlite : public FonteLogs {
 public:
  // `imutavel`: read the file as one no writer touches (SQLite's immutable=1), so opening it
  // leaves no -wal or -shm file behind; only for a file with no -wal beside it.
  // `manterAberta`: the connection and its prepared queries stay from one Abrir to the next
  // while the name leads to the same file (device and inode), for a database only this process
  // and its own writer use: a kept connection keeps SQLite's -wal beside the file.
  explicit FonteLogsSqlite(fs::path arquivo, bool imutavel = false, bool manterAberta = false);
  ~FonteLogsSqlite() override;
  FonteLogsSqlite(const FonteLogsSqlite&) = delete;
  FonteLogsSqlite& operator=(const FonteLogsSqlite&) = delete;

  void Abrir() override;
  std::unique_ptr<CursorLogs> Consultar(ConsultaLogs consulta) override;

 private:
  void Fechar();

  fs::path arquivo_;
  bool imutavel_, manterAberta_;
  sqlite3* db_ = nullptr;
  std::array<sqlite3_stmt*, 3> preparadas_{};
  std::optional<std::pair<uint64_t, uint64_t>> identidade_;
};

}  // namespace lumavox
