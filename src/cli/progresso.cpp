#include "cli/progresso.h"

#include <unistd.h>

#include <iostream>

namespace lumavox::cli {

Progresso::Progresso(std::ostream& erros, std::string rotulo)
    : erros_(erros), rotulo_(std::move(rotulo)), ativo_(&erros == &std::cerr && isatty(STDERR_FILENO)) {}

Progresso::~Progresso() {
  // Clears the line so the next message starts clean.
  if (mostrou_) erros_ << "\r\033[K" << std::flush;
}

void Progresso::Mostrar(size_t feitos, size_t total) {
  Mostrar(std::to_string(feitos) + "/" + std::to_string(total));
}

void Progresso::Mostrar(const std::string& texto) {
  if (!ativo_) return;
  const auto agora = std::chrono::steady_clock::now();
  if (mostrou_ && agora - ultima_ < std::chrono::milliseconds(100)) return;
  ultima_ = agora;
  mostrou_ = true;
  erros_ << "\r\033[K" << rotulo_ << " " << texto << std::flush;
}

}  // namespace lumavox::cli
