// The machine as the window gives it to the engine: the real clock and random source, and waits
// that keep the window's event loop running, so a run sleeping 800 ms or a minute never freezes
// the window. Closing the window interrupts a wait in progress.
#pragma once

#include "base/ambiente.h"

class QEventLoop;

namespace lumavox::app {

// Thrown out of a wait or a yield once the program is ending, to abandon the run in progress at
// once. Deliberately not a std::exception, so the engine's handlers for rule and file errors let
// it pass.
struct Encerramento {};

class AmbienteJanela : public Ambiente {
 public:
  DataHora Agora() override { return real_.Agora(); }
  void Esperar(int milissegundos) override;
  float Aleatorio() override { return real_.Aleatorio(); }
  void SemearPeloRelogio() override { real_.SemearPeloRelogio(); }

  // Ends the wait in progress; this and every later wait throw Encerramento.
  void Interromper();

 private:
  AmbienteReal real_;
  QEventLoop* laco_ = nullptr;
  bool interrompido_ = false;
};

}  // namespace lumavox::app
