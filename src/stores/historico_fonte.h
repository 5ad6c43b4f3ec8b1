// Loading the played-song history from the station's log database, independent of how the
// database is stored: a source opens it and answers the three fixed queries with rows of three
// values each; CarregarMusicasTocadas walks them into the history arrays.
#pragma once

#include <array>
#include <memory>
#include <variant>
#include <vector>

#include "base/datas.h"
#include "base/texto.h"
#include "stores/acervo.h"
#include "stores/historico.h"

namespace lumavox {

// One value read from the database: Null, a number, a text or a date-time.
using ValorBanco = std::variant<std::monostate, double, Texto, DataHora>;
using LinhaLogs = std::array<ValorBanco, 3>;
// A whole row of a table, its columns in the order they were asked for.
using LinhaBanco = std::vector<ValorBanco>;

// The three queries of a load. Each names the columns its rows carry, in order.
enum class ConsultaLogs {
  Tocadas,  // Codigo, Musica, Data: the newest 500 plays (type 0), newest first
  Tipo4,    // Tipo, Musica, NReg: each song with type-4 entries, by song code
  Tipo5,    // Tipo, Musica, Data: every type-5 entry, by song code, newest first per song
};

class CursorLogs {
 public:
  virtual ~CursorLogs() = default;
  // The next row into `linha`; false at the end. Raises ErroExecucao when the walk fails.
  virtual bool Proxima(LinhaLogs& linha) = 0;
};

class FonteLogs {
 public:
  virtual ~FonteLogs() = default;
  // Raises ErroExecucao when the database cannot be opened (missing, not a database, locked).
  virtual void Abrir() = 0;
  // Raises ErroExecucao when the query cannot run (a missing table or column).
  virtual std::unique_ptr<CursorLogs> Consultar(ConsultaLogs consulta) = 0;
};

// An OLE date (days from 30/12/1899, the fraction the time of day, which counts forward even
// for days before day zero) to whole seconds. Raises Estouro outside the years 100..9999.
DataHora DataHoraDeOle(double dias);

// Numeric value of a database value: numbers as they are, texts by ValorNumerico, else 0.
double NumeroDoValor(const ValorBanco& valor);
// A database value as a date: dates as they are, numbers as OLE dates, texts by
// ConverterDataHora. Raises TiposIncompativeis for Null or a text that is not a date.
DataHora DataDoValor(const ValorBanco& valor);

// Refreshes positions -500..-1 of the history and the type-4 and type-5 tables from `fonte`,
// with every error ignored: when the database does not open nothing changes; a query that
// fails ends the load there, its table cleared or partly filled; a value that does not convert
// skips that one assignment. Songs are matched over all 4001 slots, stale ones included.
void CarregarMusicasTocadas(Historico& historico, const Acervo& acervo, FonteLogs& fonte);

}  // namespace lumavox
