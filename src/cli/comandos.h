// lumavox-cli: the headless tool. Executar parses the command line and runs one command,
// writing to the given streams; the exit code is the process's.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace lumavox::cli {

namespace fs = std::filesystem;

int Executar(int argc, char** argv);
int Executar(std::vector<std::string> argumentos, std::ostream& saida, std::ostream& erros);

}  // namespace lumavox::cli
