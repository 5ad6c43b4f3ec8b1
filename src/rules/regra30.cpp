// Rule "30": X1% chance that songs with any type-5 mark in the log database (in quarantine)
// go, however old the mark.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"

namespace lumavox {

void Regra30(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(30))) return;
  const int16_t chance = ParaInteiro16(ValorNumerico(r.Valor(1)));
  if (SortearPercentual(e) > chance) return;

  const Historico& h = e.historico();
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    for (long k = 0; k < kDatasTipo5; ++k) {
      if (h.HistoricoTipo5(i, k)) {
        s.MusicaMantida[i] = false;
        break;
      }
    }
  }
}

}  // namespace lumavox
