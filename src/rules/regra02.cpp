// Rule "02": the same value of a field not again (or, with "Sim", again) within some hours of
// its last play.
#include <vector>

#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

void Regra02(Estado& e, double horas) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  const Texto& modo = r.Valor(1);
  const Texto& filtro = r.Valor(2);
  if (modo.empty() || filtro.empty() || r.Valor(3).empty()) return;
  if (horas <= 0) horas = ValorNumerico(r.Valor(3));
  if (horas <= 0) return;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(2))) return;
  const int16_t campo = IndiceCampo(filtro);
  if (campo == kCampoDesconhecido) return;

  // The songs played within the window whose value the filter is about, each once.
  const Historico& h = e.historico();
  const double limite = horas * 60;
  std::vector<int16_t> recentes;
  std::vector<bool> visto(kTotalSlots, false);
  const FiltroPreparado f = FiltroParaLaco(e, filtro);
  for (long p = h.TotalTocadas - 1; p >= -500; --p) {
    if (h.HistoricoCodigos[p] <= 0) continue;  // an empty entry is no play
    if (MinutosDesdeTocada(e, p) > limite) continue;
    const int16_t s = LocalizarMusicaTocada(e, p);
    if (s >= kSlotAusente || !ConferirTag(e, f, s)) continue;
    if (!visto[static_cast<size_t>(s)]) {
      visto[static_cast<size_t>(s)] = true;
      recentes.push_back(s);
    }
  }

  const bool repetir = modo == u"Sim";
  // Asking for a repeat when nothing was played in the window would leave no song at all.
  if (repetir && recentes.empty()) return;

  // A full window holds thousands of plays: under the usual comparison mode their values are
  // gathered in a set once, instead of comparing every candidate with every play.
  const bool porConjunto = ValoresOuvidos::Serve(e, campo);
  ValoresOuvidos ouvidos;
  if (porConjunto)
    for (int16_t s : recentes) ouvidos.Adicionar(e, campo, s);

  Selecao& sel = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    bool repete = false;
    if (ConferirTag(e, f, i)) {
      if (porConjunto) {
        repete = ouvidos.Compartilha(e, campo, i);
      } else {
        for (int16_t s : recentes)
          if (MesmoValorTag(e, campo, i, s)) {
            repete = true;
            break;
          }
      }
    }
    if (repete != repetir) sel.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
