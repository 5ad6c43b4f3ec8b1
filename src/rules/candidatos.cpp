#include "rules/candidatos.h"

#include <string>

#include "base/datas.h"
#include "rules/descricoes.h"

namespace lumavox {

namespace {

Texto Numero(int n) { return DeUtf8(std::to_string(n)); }

}  // namespace

bool VerificarVigencia(const Estado& e, std::u16string_view data, std::u16string_view inicio,
                       std::u16string_view fim) {
  const PartesData ref = Decompor(e.selecao.DataHoraReferencia);
  bool vigente = true;
  if (!data.empty()) {
    // The reference date goes through the same text conversion as the rule's date, so a rule
    // date that also carries a time never equals it.
    DataHora hoje = TextoParaDataHora(Numero(ref.dia) + u"/" + Numero(ref.mes) + u"/" + Numero(ref.ano));
    if (TextoParaDataHora(data) != hoje) vigente = false;
  }
  if (!inicio.empty() && !fim.empty()) {
    DataHora agora = TextoParaDataHora(Numero(ref.hora) + u":" + Numero(ref.minuto) + u":" + Numero(ref.segundo));
    // Both ends are converted before comparing: a bad end time is an error even when the
    // start alone already rules the moment out.
    DataHora de = TextoParaDataHora(inicio);
    DataHora ate = TextoParaDataHora(fim);
    if (de > agora || ate < agora) vigente = false;
  }
  return vigente;
}

bool VerificarVigenciaDaRegra(const Estado& e, const DescricaoRegra& regra) {
  const PeriodoRegra& p = regra.periodo;
  if (!p.Existe()) return true;
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  return VerificarVigencia(e, r.Valor(p.data), r.Valor(p.inicio), r.Valor(p.fim));
}

int32_t MinutosDesdeTocada(const Estado& e, long posicao) {
  return static_cast<int32_t>(
      DiferencaMinutos(e.historico().HistoricoDatas[posicao], e.selecao.DataHoraReferencia));
}

}  // namespace lumavox
