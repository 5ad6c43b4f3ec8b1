// The plays of the history chained by song, so a rule that looks at each candidate's plays
// walks only that song's entries instead of the whole history once per candidate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/mapa_inteiros.h"

namespace lumavox {

class Estado;

// Positions are chained newest first. The code chains hold every position from the newest play
// (TotalTocadas - 1) down to -500 whose code is above 0; the slot chains hold the positions from
// the newest play down to, not including, the first entry whose code is 0 or less, each under
// the slot LocalizarMusicaTocada gives it (4000 for a code not in the collection).
// Built and kept current by Estado, which alone knows when the plays or the codes change.
class IndiceHistorico {
 public:
  static constexpr long kFim = -32768;  // end of a chain
  static constexpr long kPosicaoMaisAntiga = -500;

  long PrimeiraDoCodigo(int32_t codigo) const {
    const int16_t* p = primeiraDoCodigo_.Procurar(codigo);
    return p ? *p : kFim;
  }
  long SeguinteDoCodigo(long posicao) const { return seguinteDoCodigo_[Deslocada(posicao)]; }
  long PrimeiraDoSlot(long slot) const { return primeiraDoSlot_[static_cast<std::size_t>(slot)]; }
  long SeguinteDoSlot(long posicao) const { return seguinteDoSlot_[Deslocada(posicao)]; }

 private:
  friend class Estado;
  static std::size_t Deslocada(long posicao) { return static_cast<std::size_t>(posicao - kPosicaoMaisAntiga); }
  void Construir(const Estado& e);
  // What Construir would give after a play (code above 0) was added at `posicao`, above the
  // newest entry this index was built with.
  void Acrescentar(const Estado& e, long posicao);

  MapaInteiros primeiraDoCodigo_;
  std::vector<int16_t> seguinteDoCodigo_;
  std::vector<int16_t> primeiraDoSlot_;
  std::vector<int16_t> seguinteDoSlot_;
};

}  // namespace lumavox
