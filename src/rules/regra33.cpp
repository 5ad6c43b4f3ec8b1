// Rule "33": only songs whose vibe lies within level/10 ± X1, both ends included.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"

namespace lumavox {

void Regra33(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(33))) return;
  const double centro = e.selecao.NivelRitmo / 10.0;
  const double v = ValorNumerico(r.Valor(1));
  const Acervo& a = e.acervo();
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    const double vibe = a.AcervoVibe[i];
    if (centro + v < vibe || centro - v > vibe) s.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
