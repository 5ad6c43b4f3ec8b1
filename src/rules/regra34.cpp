// Rule "34": a song with the tag waits until none of the last X1 songs played had it.
#include <optional>

#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra34(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(34))) return;
  const Texto& filtro = r.Valor(2);
  (void)IndiceCampo(filtro);
  const int16_t n = ParaInteiro16(ValorNumerico(r.Valor(1)) - 1);
  if (TerminaComGeral(filtro)) return;

  const Historico& h = e.historico();
  // Whether a recent play had the tag is the same for every candidate: look once, at the first
  // candidate that has the tag (where a position past the history raises, as it would there).
  std::optional<bool> tocadaRecente;
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i] || !ConferirTag(e, filtro, i)) continue;
    if (!tocadaRecente) {
      tocadaRecente = false;
      for (long p = h.TotalTocadas - 1; p >= h.TotalTocadas - 1 - n; --p)
        if (ConferirTag(e, filtro, LocalizarMusica(e, h.HistoricoCodigos[p]))) tocadaRecente = true;
    }
    if (*tocadaRecente) s.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
