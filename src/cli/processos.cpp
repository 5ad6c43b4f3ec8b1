#include "cli/processos.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

namespace lumavox::cli {

Processo::Processo(const std::vector<std::string>& argv, SaidaFilho saida) {
  int tubo[2] = {-1, -1};
  if (saida == SaidaFilho::Capturada && ::pipe2(tubo, O_CLOEXEC) != 0)
    throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  const pid_t pai = ::getpid();
  pid_ = ::fork();
  if (pid_ < 0) throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
  if (pid_ == 0) {
    // Only async-signal-safe calls from here to exec.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != pai) ::_exit(127);  // the parent died before the line above
    if (saida == SaidaFilho::Capturada) {
      ::dup2(tubo[1], STDOUT_FILENO);
      ::dup2(tubo[1], STDERR_FILENO);
    }
    if (saida == SaidaFilho::Descartada) {
      const int nulo = ::open("/dev/null", O_WRONLY);
      if (nulo >= 0) ::dup2(nulo, STDOUT_FILENO);
    }
    ::execv(args[0], args.data());
    ::_exit(127);
  }
  if (saida == SaidaFilho::Capturada) {
    ::close(tubo[1]);
    saida_ = tubo[0];
  }
}

Processo::~Processo() {
  if (!Terminou()) {
    Sinalizar(SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  if (saida_ >= 0) ::close(saida_);
}

bool Processo::Terminou(int* codigo) {
  if (!terminou_) {
    int status = 0;
    const pid_t r = ::waitpid(pid_, &status, WNOHANG);
    if (r == pid_) {
      terminou_ = true;
      codigo_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    } else if (r < 0 && errno == ECHILD) {
      terminou_ = true;
    }
  }
  if (terminou_ && codigo) *codigo = codigo_;
  return terminou_;
}

void Processo::Sinalizar(int sinal) {
  if (!terminou_) ::kill(pid_, sinal);
}

void EncerrarTodos(const std::vector<Processo*>& filhos, std::chrono::milliseconds prazo) {
  for (Processo* p : filhos) p->Sinalizar(SIGTERM);
  const auto limite = std::chrono::steady_clock::now() + prazo;
  auto vivos = [&] {
    bool algum = false;
    for (Processo* p : filhos) algum = !p->Terminou() || algum;
    return algum;
  };
  while (vivos() && std::chrono::steady_clock::now() < limite) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  for (Processo* p : filhos) p->Sinalizar(SIGKILL);
  while (vivos()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

std::optional<fs::path> ProcurarNoPath(const std::string& nome) {
  if (nome.find('/') != std::string::npos) {
    if (::access(nome.c_str(), X_OK) == 0) return fs::path(nome);
    return std::nullopt;
  }
  const char* path = std::getenv("PATH");
  std::string resto = path ? path : "/usr/local/bin:/usr/bin:/bin";
  size_t inicio = 0;
  while (inicio <= resto.size()) {
    const size_t fim = std::min(resto.find(':', inicio), resto.size());
    const fs::path candidato = fs::path(resto.substr(inicio, fim - inicio)) / nome;
    if (fim > inicio && ::access(candidato.c_str(), X_OK) == 0) return candidato;
    inicio = fim + 1;
  }
  return std::nullopt;
}

std::vector<std::string> LerLinhasProntas(int fd, std::string& pendente, int esperaMs, bool& fechada) {
  std::vector<std::string> linhas;
  pollfd p{fd, POLLIN, 0};
  if (::poll(&p, 1, esperaMs) > 0) {
    char buf[4096];
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n <= 0) fechada = n == 0 || errno != EINTR;
    if (n > 0) pendente.append(buf, static_cast<size_t>(n));
  }
  for (size_t fim; (fim = pendente.find('\n')) != std::string::npos;) {
    linhas.push_back(pendente.substr(0, fim));
    pendente.erase(0, fim + 1);
  }
  if (fechada && !pendente.empty()) linhas.push_back(std::exchange(pendente, {}));
  return linhas;
}

}  // namespace lumavox::cli
