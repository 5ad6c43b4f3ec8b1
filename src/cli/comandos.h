// lumavox-cli: the headless tool. Executar parses the command line and runs one command,
// writing to the given streams; the exit code is the process's.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace lumavox::cli {

namespace fs = std::filesystem;

// The process's own run: a command that leaves objects for the exit (Contexto::DeixarParaOFim)
// ends the process here, without tearing them down.
int Executar(int argc, char** argv);
// One command; `sobras`, when given, receives what the command left for the exit, which is
// otherwise destroyed before returning.
int Executar(std::vector<std::string> argumentos, std::ostream& saida, std::ostream& erros,
             std::vector<std::shared_ptr<void>>* sobras = nullptr);

}  // namespace lumavox::cli
