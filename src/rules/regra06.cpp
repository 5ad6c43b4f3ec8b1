// Rule "06": a song that played on one of the last X1 days within X2 hours of the present time
// of day is dropped. Today's plays never count, and the span does not wrap past midnight.
#include "base/datas.h"
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "state/indice_historico.h"

namespace lumavox {

void Regra06(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(6))) return;
  const int16_t dias = ParaInteiro16(ValorNumerico(r.Valor(1)));
  const int16_t horas = ParaInteiro16(ValorNumerico(r.Valor(2)));

  const Historico& h = e.historico();
  const DataHora referencia = e.selecao.DataHoraReferencia;
  const int64_t agora = SegundosDoDia(referencia);
  const int64_t meiaLargura = int64_t{horas} * 3600;
  Selecao& sel = e.selecao;
  const IndiceHistorico* indice = nullptr;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    if (!indice) indice = &IndiceDoHistorico(e);
    // The slot's chain already ends at the first empty entry from the newest play down.
    for (long p = indice->PrimeiraDoSlot(i); p != IndiceHistorico::kFim; p = indice->SeguinteDoSlot(p)) {
      const DataHora tocada = h.HistoricoDatas[p];
      const int64_t d = (SoData(referencia).segundos - SoData(tocada).segundos) / kSegundosPorDia;
      if (d < 1 || d > dias) continue;
      const int64_t t = SegundosDoDia(tocada);
      if (t - meiaLargura <= agora && agora <= t + meiaLargura) sel.MusicaMantida[i] = false;
    }
  }
}

}  // namespace lumavox
