// Rule "25": the next song must pass every filter of one slot of schedule table X1, the slot
// chosen by the time of day (X2 = 0, four minutes a slot) or by the songs played (X2 = 1).
#include <vector>

#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra25(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(25))) return;
  const TabelasAgenda& a = e.agenda;
  const double numero = ValorNumerico(r.Valor(1));
  // A number no place holds falls back to place 0 rather than to no table.
  long lugar = 0;
  for (long t = 0; t < kLugaresAgenda; ++t) {
    if (numero == a.TabelasNumero[t]) {
      lugar = t;
      break;
    }
  }
  long slot;
  if (ValorNumerico(r.Valor(2)) == 1) {
    // Modulo 359, so the position never reaches the table's last slot.
    slot = e.historico().TotalTocadas % 359;
  } else {
    const PartesData agora = Decompor(e.selecao.DataHoraReferencia);
    slot = (agora.hora * 60 + agora.minuto) / 4;
  }
  // An empty filter accepts every song, so only the others are tested.
  std::vector<FiltroPreparado> filtros;
  for (long k = 0; k < kFiltrosAgenda; ++k)
    if (const Texto& f = a.TabelasGrade(lugar, slot, k); !f.empty()) filtros.push_back(FiltroParaLaco(e, f));
  if (filtros.empty()) return;

  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    for (const FiltroPreparado& f : filtros) {
      if (!ConferirTagArtista(e, f, i)) {
        s.MusicaMantida[i] = false;
        break;
      }
    }
  }
}

}  // namespace lumavox
