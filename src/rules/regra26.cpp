// Rule "26": speed, rhythm, rating, tempo or vibe may differ from the last song's by at most X2
// points, every field read as a rhythm value.
#include <cmath>

#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "stores/acervo.h"
#include "stores/ritmo.h"

namespace lumavox {

void Regra26(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(26))) return;
  const Historico& h = e.historico();
  if (h.TotalTocadas <= 0) return;
  constexpr long kCamposPorTipo[] = {kCampoVelocidade, kCampoRitmo, kCampoNota, kCampoBpm, kCampoVibe};
  const double tipo = ValorNumerico(r.Valor(1));
  if (tipo != 0 && tipo != 1 && tipo != 2 && tipo != 3 && tipo != 4) return;
  const long campo = kCamposPorTipo[static_cast<int>(tipo)];

  const Acervo& a = e.acervo();
  const double referencia = ValorRitmo(a.AcervoTags(LocalizarMusicaTocada(e, h.TotalTocadas - 1), campo));
  Selecao& sel = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    const double diferenca = std::abs(referencia - ValorRitmo(a.AcervoTags(i, campo)));
    if (ValorNumerico(r.Valor(2)) < diferenca) sel.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
