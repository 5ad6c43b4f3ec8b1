// The played-song history: plays loaded from the log database at positions -500..-1 (-1 the
// newest) and plays chosen by the engine at 0..TotalTocadas-1, so a higher position is always
// a later play; plus the per-song marks of entry types 4 and 5.
#pragma once

#include <cstdint>

#include "base/datas.h"
#include "base/vetor.h"
#include "stores/acervo.h"

namespace lumavox {

constexpr long kPrimeiraPosicao = -4000;
constexpr long kUltimaPosicao = 4000;
constexpr long kDatasTipo5 = 10;

struct Historico {
  Vetor<int32_t, kPrimeiraPosicao, kUltimaPosicao> HistoricoCodigos;
  Vetor<DataHora, kPrimeiraPosicao, kUltimaPosicao> HistoricoDatas;
  int16_t TotalTocadas = 0;
  Vetor<Booleano, 0, kUltimoSlot> HistoricoTipo4;
  Matriz<Booleano, kTotalSlots, kDatasTipo5> HistoricoTipo5;
  Matriz<DataHora, kTotalSlots, kDatasTipo5> HistoricoTipo5Datas;
};

// Where the played-song history comes from (the station's log database). A load fills the
// history of the collection just loaded; its failures never leave the load.
class OrigemHistorico {
 public:
  virtual ~OrigemHistorico() = default;
  virtual void CarregarMusicasTocadas(Historico& historico, const Acervo& acervo) = 0;
};

}  // namespace lumavox
