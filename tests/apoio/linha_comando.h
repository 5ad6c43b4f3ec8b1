// Runs lumavox-cli in-process and keeps what it wrote.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/comandos.h"

namespace lumavox::teste {

struct ResultadoCli {
  int codigo;
  std::string saida, erros;
};

inline ResultadoCli RodarCli(std::vector<std::string> args) {
  std::ostringstream saida, erros;
  const int codigo = cli::Executar(std::move(args), saida, erros);
  return {codigo, saida.str(), erros.str()};
}

}  // namespace lumavox::teste
