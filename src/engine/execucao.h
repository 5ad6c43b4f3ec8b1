// What one call of the selection run reports. The run itself is Motor::TestarRegras.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumavox {

struct SelecaoFeita {
  int numero = 0;          // 1, 2, ... within the call
  int16_t nivel = 0;
  int conjunto = 0;
  int32_t escolhida = 0;   // the chosen song's code
  long slot = 0;
  std::string chaveLog;    // the selection's subtree in the rule log ("P" + counter)
  std::optional<std::string> mrt;  // "temp/000001.mrt" when written
  std::optional<std::string> lre;  // "list/000001_0001234_050.lre" when written
  // Why the choice could not be handed over whole (the disk is full, a folder refuses writes):
  // nothing of it reached the player and it did not join the history.
  std::optional<std::string> erroEntrega;
};

struct ResultadoExecucao {
  std::vector<SelecaoFeita> selecoes;
  int proximoIntervaloMs = 1000;  // when the timer should fire again; longer after a failed hand-over
};

}  // namespace lumavox
