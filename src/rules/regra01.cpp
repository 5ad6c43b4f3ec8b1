// Rule "01": the station's very first song (nothing played yet) must match a tag filter.
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra01(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(1))) return;
  if (e.historico().TotalTocadas > 0) return;
  Selecao& s = e.selecao;
  const FiltroPreparado filtro = FiltroParaLaco(e, r.Valor(1));
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] && !ConferirTag(e, filtro, i)) s.MusicaMantida[i] = false;
}

}  // namespace lumavox
