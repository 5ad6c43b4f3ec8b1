// One call of the selection run and what it reports. The run itself is Motor::TestarRegras;
// this header holds its result and the history compaction it ends with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumavox {

struct Historico;

struct SelecaoFeita {
  int numero = 0;          // 1, 2, ... within the call
  int16_t nivel = 0;
  int conjunto = 0;
  int32_t escolhida = 0;   // the chosen song's code
  long slot = 0;
  std::string chaveLog;    // the selection's subtree in the rule log ("P" + counter)
  std::optional<std::string> mrt;  // "temp/000001.mrt" when written
  std::optional<std::string> lre;  // "list/000001_0001234_050.lre" when written
};

struct ResultadoExecucao {
  std::vector<SelecaoFeita> selecoes;
  int proximoIntervaloMs = 1000;  // when the timer should fire again
};

// More than 3500 plays added: the 1001 newest of the first 3501 move to -500..500 and the
// next play goes to 501.
void ChecarMusicasTocadas(Historico& h);

}  // namespace lumavox
