// Rule "05": songs already in the last 500 database plays or the engine's own are dropped,
// then those rated exactly 9 or 10 each get an even chance back.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "state/indice_historico.h"
#include "stores/acervo.h"

namespace lumavox {

void Regra05(Estado& e) {
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(5))) return;

  Selecao& sel = e.selecao;
  const long ultimo = UltimoSlotDosLacos(e);
  const IndiceHistorico* indice = nullptr;
  for (long i = 0; i <= ultimo; ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    if (!indice) indice = &IndiceDoHistorico(e);
    const int32_t codigo = e.acervo().AcervoCodigos[i];
    if (indice->PrimeiraDoCodigo(codigo) != IndiceHistorico::kFim) sel.MusicaMantida[i] = false;
  }

  bool sobrou = false;
  for (long i = 0; i <= ultimo && !sobrou; ++i) sobrou = sel.MusicaMantida[i] && sel.MusicaCandidata[i];
  if (!sobrou) return;

  for (long i = 0; i <= ultimo; ++i) {
    if (sel.MusicaMantida[i] || !sel.MusicaCandidata[i]) continue;
    const double nota = ValorNumerico(e.acervo().AcervoTags(i, kCampoNota));
    if ((nota == 10 || nota == 9) && SortearPercentual(e) <= 50) sel.MusicaMantida[i] = true;
  }
}

}  // namespace lumavox
