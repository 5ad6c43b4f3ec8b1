// Rule "29": X1% chance that only songs with a type-4 mark in the log database (favourites)
// stay.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"

namespace lumavox {

void Regra29(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(29))) return;
  const int16_t chance = ParaInteiro16(ValorNumerico(r.Valor(1)));
  if (SortearPercentual(e) > chance) return;

  const Historico& h = e.historico();
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (s.MusicaCandidata[i] && !h.HistoricoTipo4[i]) s.MusicaMantida[i] = false;
}

}  // namespace lumavox
