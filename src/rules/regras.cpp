#include "rules/regras.h"

namespace lumavox {

BuscaRegra ProcurarRegra(std::u16string_view id) {
  const DescricaoRegra* d = ProcurarDescricao(id);
  if (!d) return {};
  return {true, d->procedimento};
}

}  // namespace lumavox
