// Rule "28": X1% chance that the next song must carry tag X3 ("SIM" in any case in X2) or must
// not carry it (any other X2).
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "rules/tags.h"

namespace lumavox {

void Regra28(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(28))) return;
  if (SortearPercentual(e) > ArredondarPar(ValorNumerico(r.Valor(1)))) return;

  // Unlike rule "23", the switch ignores letter case.
  const bool tocar = Maiusculas(r.Valor(2)) == u"SIM";
  const Texto& filtro = r.Valor(3);
  Selecao& s = e.selecao;
  const FiltroPreparado f = FiltroParaLaco(e, filtro);
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] && ConferirTag(e, f, i) != tocar) s.MusicaMantida[i] = false;
}

}  // namespace lumavox
