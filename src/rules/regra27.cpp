// Rule "27": X1% chance that the next song's sub-genre (its "influential genre") matches the
// last song's genre: rule "24" with the fields the other way round.
#include "rules/regras.h"
#include "stores/acervo.h"

namespace lumavox {

void Regra27(Estado& e) {
  RegraGeneroInfluente(e, DescricaoDaRegra(27), kCampoGenero, kCampoGeneroSub);
}

}  // namespace lumavox
