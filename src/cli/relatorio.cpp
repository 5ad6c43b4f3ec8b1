#include "cli/relatorio.h"

#include "base/texto.h"

namespace lumavox::cli {

namespace {

const char* Resultado(TipoLog tipo) {
  switch (tipo) {
    case TipoLog::Negada: return "negada";
    case TipoLog::NaoRealizada: return "nao_realizada";
    case TipoLog::Erro: return "erro";
    default: return "aplicada";
  }
}

nlohmann::ordered_json Opcional(const std::optional<std::string>& v) {
  return v ? nlohmann::ordered_json(*v) : nlohmann::ordered_json();
}

}  // namespace

const NoLog* ProcurarSelecao(const Estado& e, const std::string& chave) {
  for (const NoLog& no : e.log.Selecoes())
    if (no.chave == chave) return &no;
  return nullptr;
}

nlohmann::ordered_json SelecaoJson(const Estado& e, const SelecaoFeita& s) {
  nlohmann::ordered_json regras = nlohmann::ordered_json::array();
  nlohmann::ordered_json restantes = nlohmann::ordered_json::array();
  if (const NoLog* pai = ProcurarSelecao(e, s.chaveLog)) {
    for (const NoLog& no : pai->filhos) {
      if (no.tipo == TipoLog::Restantes) {
        for (const MusicaLog& m : no.musicas) restantes.push_back(m.codigo);
        continue;
      }
      if (no.tipo == TipoLog::Escolhida || no.tipo == TipoLog::Inicio || no.tipo == TipoLog::EntregaFalhou) continue;
      nlohmann::ordered_json removidas = nlohmann::ordered_json::array();
      for (const MusicaLog& m : no.musicas) removidas.push_back(m.codigo);
      nlohmann::ordered_json regra = {{"numero", no.regraNumero},
                                      {"id", ParaUtf8(no.id)},
                                      {"resultado", Resultado(no.tipo)},
                                      {"texto", ParaUtf8(no.texto)},
                                      {"removidas", std::move(removidas)}};
      if (no.tipo == TipoLog::Erro) regra["erro"] = no.erro;
      regras.push_back(std::move(regra));
    }
  }
  nlohmann::ordered_json json = {{"numero", s.numero},
          {"nivel", s.nivel},
          {"conjunto", s.conjunto},
          {"regras", std::move(regras)},
          {"restantes", std::move(restantes)},
          {"escolhida", s.escolhida},
          {"arquivos", {{"mrt", Opcional(s.mrt)}, {"lre", Opcional(s.lre)}}}};
  if (s.erroEntrega) json["erro"] = *s.erroEntrega;
  return json;
}

void ImprimirArvore(std::ostream& out, const NoLog& no, int nivel) {
  out << std::string(static_cast<size_t>(nivel) * 2, ' ') << ParaUtf8(no.texto) << "\n";
  for (const MusicaLog& m : no.musicas)
    out << std::string(static_cast<size_t>(nivel + 1) * 2, ' ') << m.codigo << "\n";
  for (const NoLog& filho : no.filhos) ImprimirArvore(out, filho, nivel + 1);
}

}  // namespace lumavox::cli
