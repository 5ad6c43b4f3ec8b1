// Rule "07": by a draw, the next song keeps or changes the last song's tag, less likely to keep
// it the longer it has run among the last four songs.
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "rules/regras.h"
#include "rules/sorteio.h"
#include "rules/tags.h"
#include "state/pedacos.h"

namespace lumavox {

void Regra07(Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  if (!VerificarVigenciaDaRegra(e, DescricaoDaRegra(7))) return;
  const Texto& filtro = r.Valor(1);
  const int16_t campo = IndiceCampo(filtro);
  const Historico& h = e.historico();
  if (h.TotalTocadas == 0) return;

  const long ultima = h.TotalTocadas - 1;
  const int16_t slotUltima = LocalizarMusica(e, h.HistoricoCodigos[ultima]);
  const Acervo& a = e.acervo();
  // A named tag is compared piece by piece without exception; the last song's own value with
  // the "POP" pieces skipped.
  const bool geral = TerminaComGeral(filtro);
  auto Comparar = [&](std::u16string_view x, std::u16string_view y) {
    return geral ? CompararArtistas(e, x, y, campo) : CompararArtistasSemExcecao(e, x, y, campo);
  };
  Texto valor;
  if (!geral) {
    if (!ConferirTag(e, filtro, slotUltima)) return;
    valor = ValorDoFiltro(filtro);
  } else {
    valor = a.AcervoTags(slotUltima, campo);
  }
  int16_t corrida = 1;
  // Position 0 and the database plays never count.
  for (long p = ultima - 1; p >= ultima - 3; --p)
    if (p > 0 && Comparar(valor, a.AcervoTags(LocalizarMusica(e, h.HistoricoCodigos[p]), campo))) ++corrida;

  const int variavel = corrida >= 4 ? 5 : corrida + 1;
  const double chance = ValorNumerico(r.Valor(variavel));
  const bool manter = SortearPercentual(e) <= chance;

  // The value is prepared once, and each candidate's tag is its field's prepared form.
  PedacosTexto preparado;
  preparado.Preparar(valor, TipoDoCampo(campo));
  Selecao& sel = e.selecao;
  for (long i = 0; i <= UltimoSlotDosLacos(e); ++i)
    if (sel.MusicaCandidata[i] && CompararSlotComPreparado(e, i, campo, preparado, geral) != manter)
      sel.MusicaMantida[i] = false;
}

}  // namespace lumavox
