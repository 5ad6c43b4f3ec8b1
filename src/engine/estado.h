// All state of one running engine, as plain structs owned by Motor and passed by reference:
// the collection, the playlists, the rule catalogue and the scratch tables of the schedule
// rule. Rule procedures read this state and write only the candidate verdicts.
#pragma once

#include <cstdint>

#include "base/datas.h"
#include "base/vetor.h"
#include "engine/catalogo.h"
#include "stores/acervo.h"
#include "stores/playlists.h"

namespace lumavox {

// Six schedule tables of 360 slots with up to six filters each, cleared at every load.
struct TabelasAgenda {
  Vetor<int32_t, 0, 5> TabelasNumero;
  Cubo<Texto, 6, 360, 6> TabelasGrade;

  void Limpar() {
    TabelasNumero.Preencher(0);
    TabelasGrade.Preencher(Texto());
  }
};

struct Estado {
  Acervo acervo;
  TabelaPlaylists playlists;
  Catalogo catalogo;
  TabelasAgenda agenda;

  bool ModoDebug = false;
  int16_t ContagemRecarga = 0;
  DataHora DataInicio;
};

}  // namespace lumavox
