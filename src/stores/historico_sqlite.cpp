#include "stores/historico_sqlite.h"

#include <sqlite3.h>

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
  CursorSqlite(sqlite3* db, sqlite3_stmt* st, int colunaData) : db_(db), st_(st), colunaData_(colunaData) {}
  ~CursorSqlite() override { sqlite3_finalize(st_); }
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
};

}  // namespace

FonteLogsSqlite::FonteLogsSqlite(fs::path arquivo, bool imutavel)
    : arquivo_(std::move(arquivo)), imutavel_(imutavel) {}

FonteLogsSqlite::~FonteLogsSqlite() { sqlite3_close(db_); }

void FonteLogsSqlite::Abrir() {
  sqlite3_close(db_);
  db_ = nullptr;
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
  if (sqlite3_exec(db_, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) !=
      SQLITE_OK) {
    std::string causa = "opening " + caminho + ": " + sqlite3_errmsg(db_);
    sqlite3_close(db_);
    db_ = nullptr;
    throw ErroExecucao(CodigoErro::ErroDeEntradaSaida, causa);
  }
}

std::unique_ptr<CursorLogs> ConsultarLogsSqlite(sqlite3* db, ConsultaLogs consulta, bool datasLidas) {
  const char* sql = consulta == ConsultaLogs::Tocadas ? kSqlTocadas
                    : consulta == ConsultaLogs::Tipo4 ? kSqlTipo4
                                                      : kSqlTipo5;
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK) {
    sqlite3_finalize(st);
    ErroBanco(db, "querying the log database");
  }
  const bool comData = consulta != ConsultaLogs::Tipo4;
  return std::make_unique<CursorSqlite>(db, st, datasLidas && comData ? 2 : -1);
}

std::unique_ptr<CursorLogs> FonteLogsSqlite::Consultar(ConsultaLogs consulta) {
  if (!db_) throw ErroExecucao(CodigoErro::ChamadaInvalida, "log database not open");
  return ConsultarLogsSqlite(db_, consulta, true);
}

}  // namespace lumavox
