#include "base/ambiente.h"

#include <chrono>
#include <ctime>
#include <thread>

#include "base/sistema_arquivos.h"

namespace lumavox {

float SortearFloat(std::mt19937& gerador) {
  // 24 random bits give every float step of [0, 1) without ever reaching 1.
  return static_cast<float>(gerador() >> 8) * (1.0f / 16777216.0f);
}

DataHora AgoraLocal() {
  std::time_t t = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &t);
#else
  localtime_r(&t, &local);
#endif
  return MontarDataHora(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                        local.tm_min, local.tm_sec);
}

SistemaArquivos& Ambiente::Arquivos() { return ArquivosReais(); }

AmbienteReal::AmbienteReal() { SemearPeloRelogio(); }

DataHora AmbienteReal::Agora() { return AgoraLocal(); }

void AmbienteReal::Esperar(int milissegundos) {
  if (milissegundos > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milissegundos));
}

float AmbienteReal::Aleatorio() { return SortearFloat(gerador_); }

void AmbienteReal::SemearPeloRelogio() {
  gerador_.seed(static_cast<uint32_t>(
      std::chrono::high_resolution_clock::now().time_since_epoch().count()));
}

float AmbienteFixo::Aleatorio() { return SortearFloat(gerador_); }

SistemaArquivos& AmbienteFixo::Arquivos() { return arquivos_ ? *arquivos_ : ArquivosReais(); }

}  // namespace lumavox
