// Applying one rule of the catalogue to the candidate set: the copy into RegraAtual with the
// variables scaled by the level, the call of the rule's procedure by its number, and the
// verdict, refused when no candidate would remain. Every application writes one log entry.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/texto.h"

namespace lumavox {

class Estado;

// Rule set of a level: up to 35 set 1, 36 to 64 set 0, 65 and above set 2.
int ConjuntoDoNivel(int nivel);

// "*a-b" slides from a (levels 36..64) toward b at either end of the level scale, by
// NivelRitmo; any value not starting with "*" is returned unchanged. Raises Estouro when the
// 16-bit arithmetic overflows.
Texto AjustarValorVariavel(const Estado& e, std::u16string_view valor);
// The same at a given level.
Texto AjustarValorVariavel(std::u16string_view valor, int16_t nivel);

// True when the rule was accepted (at least one candidate remains after it). An error raised
// while applying the rule ends it with nothing removed; it is logged and gives False.
bool AplicarRegra(Estado& e, bool UsarCatalogo, long Indice, int16_t Nivel);

}  // namespace lumavox
