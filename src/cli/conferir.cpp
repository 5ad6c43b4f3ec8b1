// lumavox-cli conferir: the station check, one finding per line (or as JSON), exit 1 when it
// found an error.
#include <memory>

#include "base/ambiente.h"
#include "base/sistema_arquivos.h"
#include "cli/simulacao_json.h"
#include "cli/subcomandos.h"
#include "engine/conferencia.h"
#include "engine/instalacao.h"

namespace lumavox::cli {

namespace {

struct OpcoesConferir {
  std::string dir;
  bool json = false;
};

void Conferir(Contexto& ctx, const OpcoesConferir& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;
  SistemaArquivosReal arquivos;
  const std::vector<Constatacao> lista = ConferirEstacao(arquivos, pasta, AgoraLocal());
  if (op.json) {
    ctx.saida << ConferenciaJson(lista).dump(2, ' ', false,
                                             nlohmann::ordered_json::error_handler_t::replace)
              << "\n";
  } else {
    size_t erros = 0;
    for (const Constatacao& c : lista) {
      ctx.saida << FormatarConstatacao(c) << "\n";
      erros += c.nivel == NivelConstatacao::Erro;
    }
    ctx.saida << "estação conferida: " << erros << (erros == 1 ? " erro, " : " erros, ")
              << lista.size() - erros << (lista.size() - erros == 1 ? " aviso\n" : " avisos\n");
  }
  if (TemErro(lista)) ctx.codigoSaida = 1;
}

}  // namespace

void RegistrarConferir(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesConferir>();
  CLI::App* cmd = app.add_subcommand(
      "conferir",
      "Confere a estação inteira (playlists, acervos, mídia, regras, tabelas, banco de log) contra "
      "as armadilhas do motor; sai com 1 quando acha erros");
  cmd->add_option("--dir", op->dir, "pasta da estação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_flag("--json", op->json, "uma lista JSON de {nivel, arquivo, linha, mensagem}");
  cmd->callback([&ctx, op] { Conferir(ctx, *op); });
}

}  // namespace lumavox::cli
