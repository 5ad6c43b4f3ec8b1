// Rule "23": when the last song carries the condition tags X1..X3, the next one must carry
// every set target tag X5..X7 ("Sim" in X4) or none of them (any other X4).
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/tags.h"

namespace lumavox {

namespace {

bool Definido(std::u16string_view filtro) { return !filtro.empty() && !TerminaComGeral(filtro); }

}  // namespace

void Regra23(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(23))) return;
  const Texto& modo = r.Valor(4);
  const Historico& h = e.historico();
  if (modo.empty() || h.TotalTocadas < 1) return;
  if (!Definido(r.Valor(1))) return;
  const int16_t ultima = LocalizarMusica(e, h.HistoricoCodigos[h.TotalTocadas - 1]);
  if (!ConferirTag(e, r.Valor(1), ultima)) return;
  for (int n = 2; n <= 3; ++n)
    if (Definido(r.Valor(n)) && !ConferirTag(e, r.Valor(n), ultima)) return;

  // Exactly "Sim": any other spelling, "sim" included, means avoid.
  const bool tocar = modo == u"Sim";
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    for (int n = 5; n <= 7; ++n) {
      const Texto& alvo = r.Valor(n);
      if (Definido(alvo) && ConferirTag(e, alvo, i) != tocar) {
        s.MusicaMantida[i] = false;
        break;
      }
    }
  }
}

}  // namespace lumavox
