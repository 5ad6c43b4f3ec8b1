#include "cli/simulacao_json.h"

#include <optional>
#include <utility>

namespace lumavox::cli {

namespace {

nlohmann::ordered_json CasoJson(const std::optional<Intervalo::Caso>& c) {
  if (!c) return nullptr;
  return {{"valor", c->valor}, {"quem", ParaUtf8(c->quem)}, {"de", FormatarIso(c->de)}, {"ate", FormatarIso(c->ate)}};
}

nlohmann::ordered_json IntervaloJson(const Intervalo& i) {
  return {{"musicas", CasoJson(i.musicas)}, {"minutos", CasoJson(i.minutos)}};
}

nlohmann::ordered_json ChaveJson(const ChaveRegra& r) {
  return {
      {"conjunto", std::get<0>(r)}, {"numero", std::get<1>(r)}, {"id", ParaUtf8(std::get<2>(r))}};
}

nlohmann::ordered_json EspacamentoJson(const Espacamento& e) {
  using J = nlohmann::ordered_json;
  auto Resumo = [](const std::optional<Espacamento::Resumo>& r) -> J {
    if (!r) return nullptr;
    return {{"minimo", r->minimo}, {"p5", r->p5}, {"p25", r->p25}, {"mediana", r->mediana}};
  };
  J histograma = J::array();
  for (size_t i = 0; i < e.histograma.size(); ++i)
    histograma.push_back({{"desde_minutos", kFaixasMinutos[i]}, {"intervalos", e.histograma[i]}});
  J menores = J::array();
  for (const Espacamento::Menor& m : e.menores)
    menores.push_back({{"quem", ParaUtf8(m.quem)},
                       {"musicas", m.musicas},
                       {"minutos", m.minutos},
                       {"intervalos", m.intervalos}});
  return {{"intervalos", e.intervalos},
          {"musicas", Resumo(e.musicas)},
          {"minutos", Resumo(e.minutos)},
          {"histograma_minutos", std::move(histograma)},
          {"menores", std::move(menores)}};
}

}  // namespace

nlohmann::ordered_json ConferenciaJson(const std::vector<Constatacao>& lista) {
  using J = nlohmann::ordered_json;
  J doc = J::array();
  for (const Constatacao& c : lista)
    doc.push_back({{"nivel", NomeDoNivel(c.nivel)},
                   {"arquivo", c.arquivo},
                   {"linha", c.linha ? J(*c.linha) : J()},
                   {"mensagem", c.mensagem}});
  return doc;
}

nlohmann::ordered_json SimulacaoJson(const Simulacao& s, const Figuras& f) {
  using J = nlohmann::ordered_json;
  J porHora = J::array();
  for (const auto& [h, n] : f.porHora) porHora.push_back({{"hora", FormatarIso(h).substr(0, 16)}, {"tocadas", n}});
  J mais = J::array();
  for (const auto& m : f.maisTocadas) {
    J negadas = J::array();
    for (const auto& [regra, vezes] : m.negadas) {
      J n = ChaveJson(regra);
      n["vezes"] = vezes;
      negadas.push_back(std::move(n));
    }
    mais.push_back({{"codigo", m.codigo},
                    {"artista", ParaUtf8(m.artista)},
                    {"titulo", ParaUtf8(m.titulo)},
                    {"vezes", m.vezes},
                    {"unica_restante", m.unicaRestante},
                    {"restantes_mediana", m.restantesMediana >= 0 ? J(m.restantesMediana) : J()},
                    {"negadas", std::move(negadas)}});
  }
  J regras = J::array();
  for (const auto& [chave, r] : s.regras) {
    J regra = {{"conjunto", r.conjunto}, {"numero", r.numero}, {"id", ParaUtf8(r.id)},
               {"descricao", ParaUtf8(r.descricao)}, {"aplicada", r.aplicada}, {"removeu", r.removeu},
               {"negada", r.negada}, {"nao_realizada", r.naoRealizada}, {"erro", r.erro}};
    if (!r.ultimoErro.empty()) regra["ultimo_erro"] = r.ultimoErro;
    regra["negada_por_hora"] = r.negadaPorHora;
    regras.push_back(std::move(regra));
  }
  J niveis = J::array();
  for (const auto& [quando, nivel] : s.niveis) niveis.push_back({{"desde", FormatarIso(quando)}, {"nivel", nivel}});
  J tocadas = J::array();
  for (const TocadaSimulada& t : s.tocadas)
    tocadas.push_back({{"momento", FormatarIso(t.momento)},
                       {"codigo", t.codigo},
                       {"nivel", t.nivel},
                       {"vibe", t.vibe},
                       {"artista", ParaUtf8(t.artista)},
                       {"titulo", ParaUtf8(t.titulo)},
                       {"avancada", t.avancada},
                       {"restantes", t.restantes >= 0 ? J(t.restantes) : J()}});
  J nunca = J::array();
  for (const MusicaDoAcervo& m : f.nuncaTocadas)
    nunca.push_back(
        {{"codigo", m.codigo}, {"artista", ParaUtf8(m.artista)}, {"titulo", ParaUtf8(m.titulo)}});
  return {{"estacao", s.estacao},
          {"inicio", FormatarIso(s.inicio)},
          {"fim", FormatarIso(s.fim)},
          {"semente", s.semente},
          {"nivel", s.origemNivel},
          {"total_musicas", s.totalMusicas},
          {"escolhidas", s.escolhidas},
          {"tocadas", s.tocadas.size()},
          {"avancadas", f.avancadas},
          {"segundos_de_execucao", s.segundosDeExecucao},
          {"por_hora", std::move(porHora)},
          {"menor_intervalo",
           {{"artista", IntervaloJson(f.artista)}, {"titulo", IntervaloJson(f.titulo)}}},
          {"mais_tocadas", std::move(mais)},
          {"regras", std::move(regras)},
          {"niveis", std::move(niveis)},
          {"sequencia", std::move(tocadas)},
          {"avisos", s.avisos},
          {"musicas_por_vezes", f.musicasPorVezes},
          {"nunca_tocadas", std::move(nunca)},
          {"unica_restante", f.unicaRestante},
          {"espacamento",
           {{"artista", EspacamentoJson(f.espacoArtista)},
            {"titulo", EspacamentoJson(f.espacoTitulo)}}},
          {"conferencia", ConferenciaJson(s.conferencia)}};
}

}  // namespace lumavox::cli
