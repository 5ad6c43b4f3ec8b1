// Rule "27": X1% chance that the next song's sub-genre (its "influential genre") matches the
// last song's genre.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "rules/tags.h"

namespace lumavox {

void Regra27(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigencia(e, r.Valor(2), r.Valor(3), r.Valor(4))) return;
  const Historico& h = e.historico;
  if (h.TotalTocadas < 1) return;
  if (SortearPercentual(e) > ArredondarPar(ValorNumerico(r.Valor(1)))) return;

  constexpr long kCampoUltima = 5;      // Genero
  constexpr long kCampoCandidata = 27;  // GeneroSub
  const int16_t ultima = LocalizarMusica(e, h.HistoricoCodigos[h.TotalTocadas - 1]);
  const Texto& referencia = e.acervo.AcervoTags(ultima, kCampoUltima);
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] &&
        !CompararArtistas(e, referencia, e.acervo.AcervoTags(i, kCampoCandidata),
                          kCampoDesconhecido))
      s.MusicaMantida[i] = false;
}

}  // namespace lumavox
