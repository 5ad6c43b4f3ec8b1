// Rule "08": inside the hours X5..X6, only songs rated from X2 up to X1 that carry both tags
// X3 and X4.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"
#include "stores/acervo.h"

namespace lumavox {

bool VerificarPeriodo(std::u16string_view periodo) {
  // Named periods of the day ("noite") were never given hours, so none is ever in force.
  (void)periodo;
  return false;
}

void Regra08(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  const DescricaoRegra& regra = DescricaoDaRegra(8);
  if (!VerificarVigenciaDaRegra(e, regra)) return;
  // The hours X5..X6 are tested on the period's date.
  const bool nasHoras = VerificarVigencia(e, r.Valor(regra.periodo.data), r.Valor(5), r.Valor(6));
  const bool noPeriodo = VerificarPeriodo(r.Valor(7));
  if (!nasHoras && !noPeriodo) return;

  // The band is given high first; with X1 below X2 no song passes.
  const double maior = ValorNumerico(r.Valor(1));
  const double menor = ValorNumerico(r.Valor(2));
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    const double nota = ValorNumerico(e.acervo().AcervoTags(i, kCampoNota));
    if (nota > maior || nota < menor || !ConferirTag(e, r.Valor(3), i) ||
        !ConferirTag(e, r.Valor(4), i))
      s.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
