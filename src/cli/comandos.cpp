#include "cli/comandos.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "cli/subcomandos.h"
#include "engine/motor.h"

namespace lumavox::cli {

int Executar(int argc, char** argv) {
  std::vector<std::shared_ptr<void>> sobras;
  const int codigo = Executar(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr, &sobras);
  if (sobras.empty()) return codigo;
  // A one-shot run ends here: freeing its tens of thousands of blocks one by one would only
  // delay the exit, which gives the memory back all at once.
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
  std::_Exit(codigo);
}

namespace {
constexpr const char* kRodapeAjuda =
    "Documentação: /usr/share/doc/lumavox/ (no código-fonte: docs/)\n"
    "  station.md         a pasta da estação, arquivo por arquivo (rdb, fila, banco de log)\n"
    "  rules.md           cada regra (01 a 34): variáveis, período, recusa, particularidades\n"
    "  selection-run.md   a execução da seleção e a entrega ao tocador (select, run, tocar)\n"
    "  station-tools.md   importar, regras, simular\n"
    "  station-check.md   conferir: cada armadilha que a conferência da estação aponta\n"
    "  on-air.md          no ar com Liquidsoap e Icecast (ar, nivel, avancar)\n"
    "  schedule-tables.md tabelas de agenda da regra 25 (rdb tabela)";
}  // namespace

int Executar(std::vector<std::string> argumentos, std::ostream& saida, std::ostream& erros,
             std::vector<std::shared_ptr<void>>* sobras) {
  CLI::App app{"lumavox-cli: o motor de seleção de músicas sem janela", "lumavox-cli"};
  app.require_subcommand(1);
  // Set before the subcommands are added, so each one's help carries it too.
  app.footer(kRodapeAjuda);
  Contexto ctx{saida, erros, 0, {}};
  RegistrarRdb(app, ctx);
  RegistrarAcervo(app, ctx);
  RegistrarDemo(app, ctx);
  RegistrarSelecao(app, ctx);
  RegistrarTocar(app, ctx);
  RegistrarRegras(app, ctx);
  RegistrarImportar(app, ctx);
  RegistrarSimular(app, ctx);
  RegistrarAr(app, ctx);
  RegistrarBanco(app, ctx);
  RegistrarConferir(app, ctx);

  // CLI11 reads the arguments from the back.
  std::reverse(argumentos.begin(), argumentos.end());
  try {
    app.parse(argumentos);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e, saida, erros);  // --help
    erros << "lumavox-cli: " << e.what() << "\n";
    return 2;
  }
  if (sobras) *sobras = std::move(ctx.paraOFim);
  return ctx.codigoSaida;
}

}  // namespace lumavox::cli
