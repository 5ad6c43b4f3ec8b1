// Progress of long work on the terminal: one line on stderr rewritten in place, shown only when
// stderr is a terminal, so pipes, logs and tests see just the results.
#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace lumavox::cli {

class Progresso {
 public:
  Progresso(std::ostream& erros, std::string rotulo);
  ~Progresso();
  // Shows "rotulo feitos/total" (or "rotulo texto"), at most a few times a second.
  void Mostrar(size_t feitos, size_t total);
  void Mostrar(const std::string& texto);

 private:
  std::ostream& erros_;
  std::string rotulo_;
  bool ativo_;
  bool mostrou_ = false;
  std::chrono::steady_clock::time_point ultima_{};
};

}  // namespace lumavox::cli
