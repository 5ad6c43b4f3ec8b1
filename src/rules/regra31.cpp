// Rule "31": songs in quarantine stay away from the hours around their type-5 marks: a song
// with a mark whose time of day lies strictly within X1 hours of the present time goes.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"

namespace lumavox {

void Regra31(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(31))) return;
  const int16_t horas = TextoParaInteiro16(r.Valor(1));
  const DataHora agora = e.selecao.DataHoraReferencia;
  // Only times of day are compared, so a span across midnight (lower above upper) holds none.
  const DataHora de = SoHora(SomarSegundos(agora, -3600LL * horas));
  const DataHora ate = SoHora(SomarSegundos(agora, 3600LL * horas));

  const Historico& h = e.historico();
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i] || !h.HistoricoTipo5(i, 0)) continue;
    for (long k = 0; k < kDatasTipo5; ++k) {
      if (!h.HistoricoTipo5(i, k)) continue;
      const DataHora t = SoHora(h.HistoricoTipo5Datas(i, k));
      if (de < t && t < ate) {
        s.MusicaMantida[i] = false;
        break;
      }
    }
  }
}

}  // namespace lumavox
