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

}  // namespace

nlohmann::ordered_json SimulacaoJson(const Simulacao& s, const Figuras& f) {
  using J = nlohmann::ordered_json;
  J porHora = J::array();
  for (const auto& [h, n] : f.porHora) porHora.push_back({{"hora", FormatarIso(h).substr(0, 16)}, {"tocadas", n}});
  J mais = J::array();
  for (const auto& m : f.maisTocadas)
    mais.push_back(
        {{"codigo", m.codigo}, {"artista", ParaUtf8(m.artista)}, {"titulo", ParaUtf8(m.titulo)}, {"vezes", m.vezes}});
  J regras = J::array();
  for (const auto& [chave, r] : s.regras) {
    J regra = {{"conjunto", r.conjunto}, {"numero", r.numero}, {"id", ParaUtf8(r.id)},
               {"descricao", ParaUtf8(r.descricao)}, {"aplicada", r.aplicada}, {"removeu", r.removeu},
               {"negada", r.negada}, {"nao_realizada", r.naoRealizada}, {"erro", r.erro}};
    if (!r.ultimoErro.empty()) regra["ultimo_erro"] = r.ultimoErro;
    regras.push_back(std::move(regra));
  }
  J niveis = J::array();
  for (const auto& [quando, nivel] : s.niveis) niveis.push_back({{"desde", FormatarIso(quando)}, {"nivel", nivel}});
  J tocadas = J::array();
  for (const TocadaSimulada& t : s.tocadas)
    tocadas.push_back({{"momento", FormatarIso(t.momento)}, {"codigo", t.codigo}, {"nivel", t.nivel},
                       {"vibe", t.vibe}, {"artista", ParaUtf8(t.artista)}, {"titulo", ParaUtf8(t.titulo)},
                       {"avancada", t.avancada}});
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
          {"menor_intervalo", {{"artista", IntervaloJson(f.artista)}, {"titulo", IntervaloJson(f.titulo)}}},
          {"mais_tocadas", std::move(mais)},
          {"regras", std::move(regras)},
          {"niveis", std::move(niveis)},
          {"sequencia", std::move(tocadas)},
          {"avisos", s.avisos}};
}

}  // namespace lumavox::cli
