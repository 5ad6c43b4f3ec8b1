// Rule "22": after a song with tag X1, X2% chance that the next one has tag X3; otherwise it
// has tag X4 or, without X4, anything but X3.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "rules/tags.h"

namespace lumavox {

namespace {

bool SemFiltro(std::u16string_view filtro) { return filtro.empty() || TerminaComGeral(filtro); }

}  // namespace

void Regra22(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(22))) return;
  const Historico& h = e.historico();
  if (h.TotalTocadas <= 0) return;
  const Texto& apos = r.Valor(1);
  if (SemFiltro(apos)) return;
  const int16_t ultima = LocalizarMusica(e, h.HistoricoCodigos[h.TotalTocadas - 1]);
  if (!ConferirTag(e, apos, ultima)) return;

  const double chance = ArredondarPar(ValorNumerico(r.Valor(2)));
  const Texto& tocar = r.Valor(3);
  const Texto& senao = r.Valor(4);
  Selecao& s = e.selecao;
  const long ultimo = UltimoSlotDosLacos(e);
  if (SortearPercentual(e) <= chance) {
    if (SemFiltro(tocar)) return;
    const FiltroPreparado f = FiltroParaLaco(e, tocar);
    for (long i = 0; i <= ultimo; ++i)
      if (s.MusicaCandidata[i] && !ConferirTag(e, f, i)) s.MusicaMantida[i] = false;
  } else if (!SemFiltro(senao)) {
    const FiltroPreparado f = FiltroParaLaco(e, senao);
    for (long i = 0; i <= ultimo; ++i)
      if (s.MusicaCandidata[i] && !ConferirTag(e, f, i)) s.MusicaMantida[i] = false;
  } else {
    // With no second tag the failed draw means "not X3".
    const FiltroPreparado f = FiltroParaLaco(e, tocar);
    for (long i = 0; i <= ultimo; ++i)
      if (s.MusicaCandidata[i] && ConferirTag(e, f, i)) s.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
