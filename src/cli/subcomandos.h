// The subcommands of lumavox-cli, each registering itself on the parser. A subcommand's
// callback runs during parsing and leaves its exit code in the context.
#pragma once

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace lumavox {
class Motor;
}

namespace lumavox::cli {

namespace fs = std::filesystem;

struct Contexto {
  std::ostream& saida;
  std::ostream& erros;
  int codigoSaida = 0;
  // Objects a command is done with and that hold nothing but memory: the process's exit takes
  // them back faster than their destructors would.
  std::vector<std::shared_ptr<void>> paraOFim;
  template <typename T>
  void DeixarParaOFim(std::unique_ptr<T> objeto) {
    paraOFim.push_back(std::shared_ptr<T>(std::move(objeto)));
  }
};

// The application folder named by --dir/LUMAVOX_DIR/the executable, or a message on stderr
// and exit code 2 when it does not exist.
bool PastaAppValida(Contexto& ctx, const fs::path& pasta);

void RegistrarRdb(CLI::App& app, Contexto& ctx);
void RegistrarAcervo(CLI::App& app, Contexto& ctx);
void RegistrarDemo(CLI::App& app, Contexto& ctx);
void RegistrarSelecao(CLI::App& app, Contexto& ctx);
void RegistrarTocar(CLI::App& app, Contexto& ctx);
void RegistrarRegras(CLI::App& app, Contexto& ctx);
void RegistrarImportar(CLI::App& app, Contexto& ctx);
void RegistrarSimular(CLI::App& app, Contexto& ctx);
void RegistrarAr(CLI::App& app, Contexto& ctx);
void RegistrarBanco(CLI::App& app, Contexto& ctx);
void RegistrarConferir(CLI::App& app, Contexto& ctx);

}  // namespace lumavox::cli
