#include "state/log.h"

#include <string>

namespace lumavox {

void LogRegras::NovaSelecao(NoLog no) {
  // A selection that never reached its choice leaves its counter unused; the next one takes
  // its key and its place.
  if (!selecoes_.empty() && selecoes_.back().chave == no.chave) selecoes_.pop_back();
  selecoes_.push_back(std::move(no));
  while (selecoes_.size() > kSelecoesGuardadas) selecoes_.pop_front();
}

std::string ChaveMusica(const NoLog& pai, const MusicaLog& musica) {
  const bool restantes = pai.tipo == TipoLog::Restantes;
  return (restantes ? "MR" : "n") + pai.chave.substr(1) + "_" + std::to_string(musica.slot);
}

Texto TextoMusica(const MusicaLog& musica) { return DeUtf8(std::to_string(musica.codigo)); }

}  // namespace lumavox
