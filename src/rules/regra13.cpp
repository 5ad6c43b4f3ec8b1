// Rule "13": a song is dropped once its plays step over X1 days, walking from the newest play
// down while each lies on a later day than the last one counted, starting from the computer's
// own date.
#include <string>

#include "base/datas.h"
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "state/indice_historico.h"

namespace lumavox {

namespace {

// The calendar date of a moment, through its day/month/year text as the station computed it.
// A four-digit year reads back as the same day, so only other years take the text round trip
// (years 0-99 come back as 19xx/20xx, other lengths do not read back and raise).
DataHora DataDoDia(DataHora d) {
  static const int64_t kAno1000 = MontarDataHora(1000, 1, 1).segundos;
  static const int64_t kAno10000 = MontarDataHora(10000, 1, 1).segundos;
  if (d.segundos >= kAno1000 && d.segundos < kAno10000) return SoData(d);
  const PartesData p = Decompor(d);
  return TextoParaDataHora(DeUtf8(std::to_string(p.dia) + "/" + std::to_string(p.mes) + "/" +
                                  std::to_string(p.ano)));
}

}  // namespace

void Regra13(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(13))) return;
  const int16_t limite = TextoParaInteiro16(r.Valor(1));

  const Historico& h = e.historico();
  const DataHora hoje = SoData(e.ambiente->Agora());
  const DataHora diaDeHoje = DataDoDia(hoje);
  Selecao& sel = e.selecao;
  const IndiceHistorico* indice = nullptr;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    if (!indice) indice = &IndiceDoHistorico(e);
    DataHora d = hoje;
    DataHora diaDeD = diaDeHoje;
    int16_t contagem = 0;
    for (long p = indice->PrimeiraDoCodigo(e.acervo().AcervoCodigos[i]); p != IndiceHistorico::kFim;
         p = indice->SeguinteDoCodigo(p)) {
      const DataHora tocada = h.HistoricoDatas[p];
      if (DataDoDia(tocada) == diaDeD) continue;  // a second play on the tracked day
      if (SoData(tocada) <= SoData(d)) break;     // an earlier day ends the walk
      d = tocada;
      diaDeD = DataDoDia(d);
      if (++contagem >= limite) break;
    }
    if (contagem >= limite) sel.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
