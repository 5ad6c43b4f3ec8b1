#include "cli/ambiente_cli.h"

namespace lumavox::cli {

AmbienteCli::AmbienteCli(std::optional<DataHora> agora, std::optional<uint32_t> semente, bool semEspera)
    : agora_(agora), semente_(semente), semEspera_(semEspera), gerador_(semente.value_or(0)) {
  if (!semente_) SemearPeloRelogio();
}

DataHora AmbienteCli::Agora() { return agora_ ? *agora_ : real_.Agora(); }

void AmbienteCli::Esperar(int milissegundos) {
  if (!semEspera_) real_.Esperar(milissegundos);
}

float AmbienteCli::Aleatorio() { return semente_ ? SortearFloat(gerador_) : real_.Aleatorio(); }

void AmbienteCli::SemearPeloRelogio() {
  if (!semente_) real_.SemearPeloRelogio();
}

}  // namespace lumavox::cli
