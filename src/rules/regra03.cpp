// Rule "03": at a given advance click (or from it on), the next song changes, or keeps, a tag or
// the last song's value of a field.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra03(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  Selecao& sel = e.selecao;
  const int16_t cliques = sel.CliqueAtual;
  if (cliques == 0) return;
  const double clique = ValorNumerico(r.Valor(1));
  if (r.Valor(4) == u"Sim") {
    if (clique > cliques) return;
  } else if (clique != cliques) {
    return;
  }
  const Texto& filtro = r.Valor(3);
  if (r.Valor(2).empty() || filtro.empty()) return;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(3))) return;

  // Change drops the songs that match; keep drops those that do not.
  const bool trocar = r.Valor(2) != u"Não";
  if (!TerminaComGeral(filtro)) {
    const FiltroPreparado f = FiltroParaLaco(e, filtro);
    for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
      if (sel.MusicaCandidata[i] && ConferirTag(e, f, i) == trocar) sel.MusicaMantida[i] = false;
    return;
  }
  const int32_t ultima = e.historico().HistoricoCodigos[e.historico().TotalTocadas - 1];
  if (ultima < 1) return;
  const int16_t campo = IndiceCampo(filtro);
  const int16_t slotUltima = LocalizarMusica(e, ultima);
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (sel.MusicaCandidata[i] && MesmoValorTag(e, campo, i, slotUltima) == trocar) sel.MusicaMantida[i] = false;
}

}  // namespace lumavox
