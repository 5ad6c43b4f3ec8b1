// Rule "32": the vibe band of rule "33" made soft: inside level/10 ± X1 a song stays when its
// triangle score (100 at the centre, 0 at the edges) reaches one draw made for all songs.
#include "base/erro.h"
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"

namespace lumavox {

void Regra32(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(32))) return;
  const int sorteio = SortearPercentual(e);
  const double centro = e.selecao.NivelRitmo / 10.0;
  const double v = ValorNumerico(r.Valor(1));
  // A band of width zero has no slope; the rule ends with the error, after its draw.
  if (v == 0) throw ErroExecucao(CodigoErro::DivisaoPorZero, "Division by zero: variação 0");
  const double subida = 100 / v;
  const double baseSubida = 100 - centro * 100 / v;
  const double descida = 100 / (-v);
  const double baseDescida = 100 + centro * 100 / v;

  const Acervo& a = e.acervo();
  Selecao& s = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!s.MusicaCandidata[i]) continue;
    const double vibe = a.AcervoVibe[i];
    if (vibe > centro + v || vibe < centro - v) {
      s.MusicaMantida[i] = false;
    } else if (vibe != centro) {
      const double nota = vibe < centro ? vibe * subida + baseSubida : vibe * descida + baseDescida;
      if (ParaInteiro16(nota) < sorteio) s.MusicaMantida[i] = false;
    }
  }
}

}  // namespace lumavox
