#include "base/vetor.h"

namespace lumavox {

void ErroIndice(long indice, long inicio, long fim) {
  throw ErroExecucao(CodigoErro::ForaDoIntervalo,
                     "Subscript out of range: " + std::to_string(indice) + " fora de " +
                         std::to_string(inicio) + ".." + std::to_string(fim));
}

}  // namespace lumavox
