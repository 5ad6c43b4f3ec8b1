// Rule "24": X1% chance that the next song's genre matches the last song's sub-genre (its
// "influential genre").
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "rules/tags.h"

namespace lumavox {

void RegraGeneroInfluente(Estado& e, const DescricaoRegra& regra, long campoUltima,
                          long campoCandidata) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, regra)) return;
  const Historico& h = e.historico();
  if (h.TotalTocadas < 1) return;
  if (SortearPercentual(e) > ArredondarPar(ValorNumerico(r.Valor(1)))) return;

  const int16_t ultima = LocalizarMusica(e, h.HistoricoCodigos[h.TotalTocadas - 1]);
  const std::u16string_view referencia = e.acervo().AcervoTags(ultima, campoUltima);
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] &&
        !CompararArtistas(e, referencia, e.acervo().AcervoTags(i, campoCandidata),
                          kCampoDesconhecido))
      s.MusicaMantida[i] = false;
}

void Regra24(Estado& e) {
  RegraGeneroInfluente(e, DescricaoDaRegra(24), kCampoGeneroSub, kCampoGenero);
}

}  // namespace lumavox
