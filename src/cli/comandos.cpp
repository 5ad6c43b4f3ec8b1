#include "cli/comandos.h"

#include <iostream>

namespace lumavox::cli {

int Executar(int argc, char** argv) {
  return Executar(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}

int Executar(std::vector<std::string>, std::ostream&, std::ostream&) { return 0; }

fs::path ResolverPastaApp(const std::string& opcaoDir) { return opcaoDir; }

}  // namespace lumavox::cli
