// How the CLI shows selections: the JSON document of `select --json` and the log tree as
// indented text.
#pragma once

#include <nlohmann/json.hpp>

#include <ostream>

#include "engine/execucao.h"
#include "state/estado.h"

namespace lumavox::cli {

const NoLog* ProcurarSelecao(const Estado& e, const std::string& chave);
nlohmann::ordered_json SelecaoJson(const Estado& e, const SelecaoFeita& s);
void ImprimirArvore(std::ostream& out, const NoLog& no, int nivel = 0);

}  // namespace lumavox::cli
