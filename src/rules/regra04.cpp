// Rule "04": one draw per rating decides whether its songs stay; the rating X1 always stays,
// each step below it is ten points less likely, and ratings above it get an even chance.
#include "base/numeros.h"
#include "base/vetor.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "stores/acervo.h"

namespace lumavox {

void Regra04(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(4))) return;

  // Bounded tables: an X1 above 10 or a rating outside 0..10 raises and ends the rule.
  Vetor<int16_t, 0, 10> chance;
  chance.Preencher(50);
  double x = 100;
  for (long k = ParaInteiro16(ValorNumerico(r.Valor(1))); k >= 0; --k) {
    chance[k] = static_cast<int16_t>(x);
    x -= 10;
    if (x <= 0) x = 5;
  }
  Vetor<Booleano, 0, 10> permitida;
  for (long j = 10; j >= 0; --j) permitida[j] = SortearPercentual(e) <= chance[j];

  Selecao& sel = e.selecao;
  // Each song's rating as a number, read from the tag table once per version of it.
  const std::vector<double>& notas = e.cacheTags.Valores(kCampoNota, e.acervo().AcervoTags);
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    const long nota = ParaInteiro16(notas[static_cast<size_t>(i)]);
    if (!permitida[nota]) sel.MusicaMantida[i] = false;
  }
}

}  // namespace lumavox
