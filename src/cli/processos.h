// The child processes of `lumavox-cli ar`: started with their output where the parent wants it,
// ended together, and never left behind when the parent dies.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumavox::cli {

namespace fs = std::filesystem;

// Capturada: standard output and error both into one pipe the parent reads.
enum class SaidaFilho { Herdada, Descartada, Capturada };

class Processo {
 public:
  // Starts argv[0] (a path) with its arguments. A child gets SIGTERM when the parent dies.
  // Raises std::runtime_error when it cannot be started.
  Processo(const std::vector<std::string>& argv, SaidaFilho saida);
  ~Processo();
  Processo(const Processo&) = delete;
  Processo& operator=(const Processo&) = delete;

  pid_t Pid() const { return pid_; }
  // The read end of the child's output, -1 unless captured.
  int Saida() const { return saida_; }
  // True once the child has ended; its exit status (or 128 + signal) in `codigo`.
  bool Terminou(int* codigo = nullptr);
  void Sinalizar(int sinal);

 private:
  pid_t pid_ = -1;
  int saida_ = -1;
  bool terminou_ = false;
  int codigo_ = 0;
};

// SIGTERM to every child still running, SIGKILL to those left after `prazo`; returns once all
// have ended.
void EncerrarTodos(const std::vector<Processo*>& filhos, std::chrono::milliseconds prazo);

// The program named `nome` on PATH, or nothing.
std::optional<fs::path> ProcurarNoPath(const std::string& nome);

// Reads what a captured output has ready into `pendente` and returns the complete lines.
// Waits at most `esperaMs` for something to arrive; `fechada` turns true at end of file.
std::vector<std::string> LerLinhasProntas(int fd, std::string& pendente, int esperaMs, bool& fechada);

}  // namespace lumavox::cli
