// Writing the rule log of the selection being made: the entries the dispatcher and the run add,
// and the rule description as the log shows it.
#pragma once

#include <cstdint>
#include <string>

#include "base/texto.h"
#include "state/log.h"

namespace lumavox {

class Estado;

// The rule's description with "X1".."X10" replaced by the values of RegraAtual's variables
// ("X10" before "X1"); a placeholder whose value is empty stays as it is.
Texto MontarDescricao(const Estado& e);

// Adds one entry of the given kind to the log of the current selection. `valor` is the chosen
// song's code for Escolhida and EntregaFalhou; `contagem` the songs a rule would leave out (rule
// entries); `erro` the cause of an Erro or EntregaFalhou entry.
void RegistrarLog(Estado& e, TipoLog tipo, int32_t valor = 0, int16_t contagem = 0,
                  const std::string& erro = {});

}  // namespace lumavox
