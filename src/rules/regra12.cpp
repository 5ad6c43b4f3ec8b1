// Rule "12": at most X songs in a row sharing the last song's value of a field. The count is
// the last song plus those among the X before it that share a piece of its value; they need
// not be adjacent, and history position 0 never counts.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra12(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(12))) return;
  const Texto& filtro = r.Valor(2);
  const int16_t campo = IndiceCampo(filtro);
  const int16_t x = ParaInteiro16(ValorNumerico(r.Valor(1)));
  const Historico& h = e.historico();
  if (h.TotalTocadas < x) return;

  const long ultima = h.TotalTocadas - 1;
  const int16_t slotUltima = LocalizarMusica(e, h.HistoricoCodigos[ultima]);
  int16_t contagem = 0;
  auto ContarAnterior = [&](long p) {
    if (p <= 0) return;
    const int16_t t = LocalizarMusica(e, h.HistoricoCodigos[p]);
    if (CompararArtistasSlots(e, slotUltima, t, campo)) ++contagem;
  };

  if (!TerminaComGeral(filtro)) {
    if (!ConferirTag(e, filtro, slotUltima)) return;
    contagem = 1;
    for (long p = ultima - 1; p >= ultima - x; --p) ContarAnterior(p);
  } else {
    for (long p = ultima; p >= ultima - x; --p) {
      if (p == ultima) {
        // Reading the last song's value raises for an unknown field, as any tag read would.
        (void)e.acervo().AcervoTags(slotUltima, campo);
        contagem = 1;
      } else {
        ContarAnterior(p);
      }
    }
  }
  if (contagem == 0 || contagem < x) return;

  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] && CompararArtistasSlots(e, i, slotUltima, campo)) s.MusicaMantida[i] = false;
}

}  // namespace lumavox
