// The primitives every rule uses on the candidate set: whether the rule is in force at the
// reference moment, finding a song by its code, and the age of a play in minutes.
#pragma once

#include <cstdint>
#include <string_view>

#include "state/estado.h"

namespace lumavox {

struct DescricaoRegra;

// Last slot of a rule's loop over the collection. The loops deliberately run one slot past the
// last song; with a full collection of 4001 songs there is no such slot and they stop at 4000.
inline long UltimoSlotDosLacos(const Estado& e) {
  return e.acervo().TotalMusicas < kUltimoSlot ? e.acervo().TotalMusicas : kUltimoSlot;
}

// True when the rule is in force at DataHoraReferencia: the date D (if given) equals the
// reference date exactly, and, when both S and E are given, S <= time of day <= E. One-sided
// ranges are ignored and ranges never wrap past midnight. A text that is not a date or time
// raises TiposIncompativeis.
bool VerificarVigencia(const Estado& e, std::u16string_view data, std::u16string_view inicio,
                       std::u16string_view fim);
// VerificarVigencia over the variables of RegraAtual that the rule's description names as its
// period. A rule without a period is always in force.
bool VerificarVigenciaDaRegra(const Estado& e, const DescricaoRegra& regra);

// Minute boundaries from the play at `posicao` to DataHoraReferencia.
int32_t MinutosDesdeTocada(const Estado& e, long posicao);

}  // namespace lumavox
