// The environment the CLI gives the engine: the real clock unless --now freezes it, a draw
// seeded by --seed (and then never reseeded), and real waits unless --no-wait.
#pragma once

#include <cstdint>
#include <optional>
#include <random>

#include "base/ambiente.h"

namespace lumavox::cli {

class AmbienteCli : public Ambiente {
 public:
  AmbienteCli(std::optional<DataHora> agora, std::optional<uint32_t> semente, bool semEspera);
  DataHora Agora() override;
  void Esperar(int milissegundos) override;
  float Aleatorio() override;
  void SemearPeloRelogio() override;

 private:
  std::optional<DataHora> agora_;
  std::optional<uint32_t> semente_;
  bool semEspera_;
  AmbienteReal real_;
  std::mt19937 gerador_;
};

}  // namespace lumavox::cli
