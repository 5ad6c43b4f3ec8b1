// All state of one running engine, owned by Motor and passed by reference: the collection,
// the history, the playlists, the rule catalogue and the scratch tables of the schedule rule.
// Rule procedures read this state and write only the candidate verdicts.
#pragma once

#include <cstdint>
#include <functional>

#include "base/ambiente.h"
#include "base/datas.h"
#include "base/mapa_inteiros.h"
#include "base/vetor.h"
#include "state/indice_historico.h"
#include "state/log.h"
#include "state/painel.h"
#include "state/pedacos.h"
#include "stores/acervo.h"
#include "stores/agenda.h"
#include "stores/catalogo.h"
#include "stores/historico.h"
#include "stores/playlists.h"

namespace lumavox {

constexpr int16_t kSlotAusente = 4000;  // "not found", and also the last slot: never told apart

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

// The whole state of one engine. The collection and the history are read-only to all; they
// change only through the operations below, which keep what is derived from them (the first slot
// of each code, the plays chained by song) current, so no reader can see a stale index. The
// rest is plain data the run and the rules write directly.
class Estado {
 public:
  const Acervo& acervo() const { return acervo_; }
  const Historico& historico() const { return historico_; }

  // Loading a collection: `carregar` writes the collection in place (a load keeps what an
  // earlier one left past its last song). The derived tables follow even when it raises.
  void CarregarAcervo(const std::function<void(Acervo&)>& carregar);
  // Replacing the history: `preencher` writes the plays and marks in place (a database load,
  // plays given on the command line). The derived tables follow even when it raises.
  void SubstituirHistorico(const std::function<void(Historico&)>& preencher);
  // Adding a play at the next position. Raises ForaDoIntervalo, changing nothing, when the
  // history has no room past position 4000.
  void AdicionarTocada(int32_t codigo, DataHora momento);
  // More than 3500 plays added: the 1001 newest of the first 3501 move to -500..500 and the
  // next play goes to 501.
  void ChecarMusicasTocadas();

  // First slot 0..4000 holding the code, or kSlotAusente when none does (slots past the last
  // song count).
  int16_t LocalizarMusica(int32_t codigo) const;
  // The index of the present history, rebuilt first when the plays or the codes changed. A
  // newest position past 4000 raises ForaDoIntervalo, as the scans it replaces would.
  const IndiceHistorico& IndiceDoHistorico() const;

  TabelaPlaylists playlists;
  Catalogo catalogo;
  TabelasAgenda agenda;
  Selecao selecao;
  Execucao execucao;
  // Prepared tag texts for the tag comparisons; each entry checks itself against AcervoTags.
  CacheTags cacheTags;
  LogRegras log;

  // The machine the engine runs on (clock, random source) and whoever shows it; set by Motor.
  Ambiente* ambiente = nullptr;
  Painel* painel = nullptr;

  // Changes with every load of the collection, so a caller can tell the collection is still the
  // one it loaded.
  uint64_t VersaoAcervo() const { return versaoCodigos_; }

  bool ModoDebug = false;
  int16_t ContagemRecarga = 0;
  DataHora DataInicio;

 private:
  Acervo acervo_;
  Historico historico_;

  // Bumped by every write of the codes or of the history; the indexes compare them with what
  // they were built from.
  uint64_t versaoCodigos_ = 0;
  uint64_t versaoHistorico_ = 0;

  mutable uint64_t codigosIndexados_ = ~0ull;
  mutable MapaInteiros primeiroSlot_;

  mutable uint64_t historicoIndexado_ = ~0ull;
  mutable uint64_t codigosDoHistorico_ = ~0ull;
  mutable IndiceHistorico indiceHistorico_;
};

// Free forms of the lookups, as the rules call them.
inline const IndiceHistorico& IndiceDoHistorico(const Estado& e) { return e.IndiceDoHistorico(); }
inline int16_t LocalizarMusica(const Estado& e, int32_t codigo) { return e.LocalizarMusica(codigo); }
// The slot of the song played at a history position (-4000..4000), or kSlotAusente.
inline int16_t LocalizarMusicaTocada(const Estado& e, long posicao) {
  return e.LocalizarMusica(e.historico().HistoricoCodigos[posicao]);
}

}  // namespace lumavox
