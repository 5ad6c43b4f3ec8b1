// All state of one running engine, as plain structs owned by Motor and passed by reference:
// the collection, the playlists, the rule catalogue and the scratch tables of the schedule
// rule. Rule procedures read this state and write only the candidate verdicts.
#pragma once

#include <cstdint>

#include "base/ambiente.h"
#include "base/datas.h"
#include "base/vetor.h"
#include "engine/catalogo.h"
#include "engine/log.h"
#include "engine/painel.h"
#include "rules/indice_historico.h"
#include "rules/pedacos.h"
#include "stores/acervo.h"
#include "stores/agenda.h"
#include "stores/historico.h"
#include "stores/playlists.h"

namespace lumavox {

// The candidate set of the selection being made and the counters the rules and the log read.
struct Selecao {
  Vetor<Booleano, 0, kUltimoSlot> MusicaCandidata;  // cleared only by the dispatcher
  Vetor<Booleano, 0, kUltimoSlot> MusicaMantida;    // verdict of the rule being applied
  int16_t MusicasExcluidas = 0;  // songs not both candidate and kept after the last accepted rule
  int16_t NivelRitmo = 0;        // level handed to the dispatcher
  DataHora DataHoraReferencia;   // the moment every rule but "13" takes as now
  int16_t RegraNumero = 0;       // rules walked in this selection, from 1
  int32_t MusicasEscolhidas = 0; // songs chosen since start-up; numbers the log's subtrees
  int16_t CliqueAtual = 0;       // advance click of this selection, read by rule "03"
  int16_t ModoComparacaoArtista = 0;  // 0: one piece suffices; 1: every piece must match
  bool NaoRealizada = false;     // the rule's number has no procedure
};

// What the selection run keeps between calls.
struct Execucao {
  int16_t NivelAtual = 0;       // last level read from ritmo.rer
  int16_t NivelMudou = 0;       // 1 when the level changed since the queue was filled
  int16_t CliqueAvancar = 0;    // value read from avancar.rer (0 = no advance pending)
  int16_t ContagemAvancos = 0;  // advance files consumed
  int16_t Tentativas = 0;       // attempts at reading ritmo.rer in this call
  int16_t Iniciado = 0;         // 1 once the first call has finished
  int32_t MusicaForcada = 0;    // code to choose next whatever the draw (the window's request)
  int64_t ContadorSaida = 0;    // numbers the .mrt and .lre files of each choice
};

struct Estado {
  Acervo acervo;
  TabelaPlaylists playlists;
  Catalogo catalogo;
  TabelasAgenda agenda;
  Historico historico;
  Selecao selecao;
  Execucao execucao;
  // Prepared tag texts for the tag comparisons; always checked against AcervoTags.
  CacheTags cacheTags;
  // The plays chained by song for the rules that look up each candidate's plays.
  IndiceHistorico indiceHistorico;
  LogRegras log;

  // The machine the engine runs on (clock, random source) and whoever shows it; set by Motor.
  Ambiente* ambiente = nullptr;
  Painel* painel = nullptr;

  bool ModoDebug = false;
  int16_t ContagemRecarga = 0;
  DataHora DataInicio;
};

}  // namespace lumavox
