#include "stores/historico_sqlite.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <string>
#include <utility>

#include "base/erro.h"

namespace lumavox {

namespace {

[[noreturn]] void ErroBanco(sqlite3* db, const std::string& acao) {
  throw ErroExecucao(CodigoErro::ErroDeEntradaSaida,
                     acao + ": " + (db ? sqlite3_errmsg(db) : "out of memory"));
}

class CursorSqlite : public CursorLogs {
 public:
  // `dono`: the cursor finalizes the statement; else it only resets it for the next load.
  CursorSqlite(sqlite3* db, sqlite3_stmt* st, int colunaData, bool dono = true)
      : db_(db), st_(st), colunaData_(colunaData), dono_(dono) {}
  ~CursorSqlite() override {
    if (dono_)
      sqlite3_finalize(st_);
    else
      sqlite3_reset(st_);
  }
  CursorSqlite(const CursorSqlite&) = delete;
  CursorSqlite& operator=(const CursorSqlite&) = delete;

  bool Proxima(LinhaLogs& linha) override {
    const int rc = sqlite3_step(st_);
    if (rc == SQLITE_DONE) return false;
    if (rc != SQLITE_ROW) ErroBanco(db_, "reading the log database");
    for (int c = 0; c < 3; ++c) linha[c] = Valor(c);
    return true;
  }

 private:
  ValorBanco Valor(int c) {
    switch (sqlite3_column_type(st_, c)) {
      case SQLITE_INTEGER: return static_cast<double>(sqlite3_column_int64(st_, c));
      case SQLITE_FLOAT: return sqlite3_column_double(st_, c);
      case SQLITE_TEXT: {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(st_, c));
        const std::string_view texto(bytes, static_cast<size_t>(sqlite3_column_bytes(st_, c)));
        // A date as the log writer stores it is read as a date at once: the load would only
        // widen the text to read the same date from it.
        if (c == colunaData_)
          if (auto data = DataHoraIsoDeBytes(texto)) return *data;
        return DeUtf8(texto);
      }
      default:  // Null, and blobs, which no column of the log holds
        return std::monostate{};
    }
  }

  sqlite3* db_;
  sqlite3_stmt* st_;
  int colunaData_;
  bool dono_;
};

constexpr const char* kSqlEsquema = "SELECT count(*) FROM sqlite_master";

const char* SqlDa(ConsultaLogs consulta) {
  return consulta == ConsultaLogs::Tocadas ? kSqlTocadas : consulta == ConsultaLogs::Tipo4 ? kSqlTipo4 : kSqlTipo5;
}

// The Data column of the queries that carry one.
int ColunaData(ConsultaLogs consulta, bool datasLidas) {
  return datasLidas && consulta != ConsultaLogs::Tipo4 ? 2 : -1;
}

sqlite3_stmt* Preparar(sqlite3* db, ConsultaLogs consulta) {
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, SqlDa(consulta), -1, &st, nullptr) != SQLITE_OK) {
    sqlite3_finalize(st);
    ErroBanco(db, "querying the log database");
  }
  return st;
}

// Device and inode of the file, or nothing when it cannot be looked at.
std::optional<std::pair<uint64_t, uint64_t>> Identidade(const fs::path& arquivo) {
  struct stat st {};
  if (::stat(arquivo.c_str(), &st) != 0) return std::nullopt;
  return std::pair<uint64_t, uint64_t>{st.st_dev, st.st_ino};
}

}  // namespace

FonteLogsSqlite::FonteLogsSqlite(fs::path arquivo, bool imutavel, bool manterAberta)
    : arquivo_(std::move(arquivo)), imutavel_(imutavel), manterAberta_(manterAberta) {}

FonteLogsSqlite::~FonteLogsSqlite() { Fechar(); }

void FonteLogsSqlite::Fechar() {
  for (sqlite3_stmt*& st : preparadas_) {
    sqlite3_finalize(st);
    st = nullptr;
  }
  sqlite3_close(db_);
  db_ = nullptr;
}

void FonteLogsSqlite::Abrir() {
  // The same file still open is read again through the same connection, once its schema still
  // reads, as opening it would check.
  if (db_ && manterAberta_ && identidade_ && Identidade(arquivo_) == identidade_ &&
      sqlite3_exec(db_, kSqlEsquema, nullptr, nullptr, nullptr) == SQLITE_OK)
    return;
  Fechar();
  if (manterAberta_) identidade_ = Identidade(arquivo_);
  const std::string caminho = arquivo_.string();
  std::string nome = caminho;
  // One thread reads through each connection, so SQLite need not lock it at every call.
  int modo = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
  if (imutavel_) {
    nome = "file:";
    for (char c : caminho) {
      if (c == '?' || c == '#' || c == '%') {
        static const char* kHex = "0123456789ABCDEF";
        const auto u = static_cast<unsigned char>(c);
        nome += {'%', kHex[u >> 4], kHex[u & 15]};
      } else {
        nome += c;
      }
    }
    nome += "?immutable=1";
    modo |= SQLITE_OPEN_URI;
  }
  if (sqlite3_open_v2(nome.c_str(), &db_, modo, nullptr) != SQLITE_OK) {
    std::string causa = "opening " + caminho + ": " + (db_ ? sqlite3_errmsg(db_) : "out of memory");
    sqlite3_close(db_);
    db_ = nullptr;
    throw ErroExecucao(CodigoErro::ArquivoNaoEncontrado, causa);
  }
  sqlite3_busy_timeout(db_, kEsperaBloqueioMs);
  // The file is only looked at on first use: reading the schema now tells a garbage file or a
  // database a writer holds locked from a good one, before any table is touched.
  if (sqlite3_exec(db_, kSqlEsquema, nullptr, nullptr, nullptr) != SQLITE_OK) {
    std::string causa = "opening " + caminho + ": " + sqlite3_errmsg(db_);
    sqlite3_close(db_);
    db_ = nullptr;
    throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, causa);
  }
}

std::unique_ptr<CursorLogs> ConsultarLogsSqlite(sqlite3* db, ConsultaLogs consulta, bool datasLidas) {
  return std::make_unique<CursorSqlite>(db, Preparar(db, consulta), ColunaData(consulta, datasLidas));
}

std::unique_ptr<CursorLogs> FonteLogsSqlite::Consultar(ConsultaLogs consulta) {
  if (!db_) throw ErroExecucao(CodigoErro::ChamadaInvalida, "log database not open");
  if (!manterAberta_) return ConsultarLogsSqlite(db_, consulta, true);
  sqlite3_stmt*& st = preparadas_[static_cast<size_t>(consulta)];
  if (!st) st = Preparar(db_, consulta);
  return std::make_unique<CursorSqlite>(db_, st, ColunaData(consulta, true), false);
}

}  // namespace lumavox
