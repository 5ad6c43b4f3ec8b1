// What the engine asks of the machine it runs on: the present moment, a blocking wait, a
// random source and the files. The engine only sees this interface so tests and the CLI can
// freeze time, skip the waits, seed the draws and break the disk.
#pragma once

#include <cstdint>
#include <random>

#include "base/datas.h"

namespace lumavox {

class SistemaArquivos;

class Ambiente {
 public:
  virtual ~Ambiente() = default;
  virtual DataHora Agora() = 0;               // local civil time
  virtual void Esperar(int milissegundos) = 0;
  virtual float Aleatorio() = 0;              // uniform in [0, 1), single precision
  virtual void SemearPeloRelogio() = 0;       // reseed the random source from the clock
  virtual SistemaArquivos& Arquivos();        // the machine's own unless a subclass says
};

// The real machine: system clock in local time, real sleeps, a clock-seeded generator.
class AmbienteReal : public Ambiente {
 public:
  AmbienteReal();
  DataHora Agora() override;
  void Esperar(int milissegundos) override;
  float Aleatorio() override;
  void SemearPeloRelogio() override;

 private:
  std::mt19937 gerador_;
};

// A frozen clock, no waits and a fixed seed: the same inputs give the same selections.
// Reseeding from the clock is ignored so a seeded run stays reproducible.
class AmbienteFixo : public Ambiente {
 public:
  explicit AmbienteFixo(DataHora agora, uint32_t semente = 1) : agora_(agora), gerador_(semente) {}
  DataHora Agora() override { return agora_; }
  void Esperar(int milissegundos) override { esperado_ms_ += milissegundos; }
  float Aleatorio() override;
  void SemearPeloRelogio() override {}
  SistemaArquivos& Arquivos() override;

  void DefinirAgora(DataHora agora) { agora_ = agora; }
  // The files the engine sees from now on; the real ones until this is called.
  void DefinirArquivos(SistemaArquivos& arquivos) { arquivos_ = &arquivos; }
  long long EsperadoMs() const { return esperado_ms_; }

 private:
  DataHora agora_;
  std::mt19937 gerador_;
  long long esperado_ms_ = 0;
  SistemaArquivos* arquivos_ = nullptr;
};

float SortearFloat(std::mt19937& gerador);
DataHora AgoraLocal();

}  // namespace lumavox
