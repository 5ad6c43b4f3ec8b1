#include "app/sinais.h"

#include <QSocketNotifier>

#ifndef _WIN32
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace lumavox::app {

#ifndef _WIN32
namespace {

int g_descritores[2] = {-1, -1};

extern "C" void AoSinal(int) {
  const char byte = 1;
  // Nothing else is safe in a handler; a full socket already carries a pending stop.
  [[maybe_unused]] const ssize_t escrito = ::write(g_descritores[0], &byte, 1);
}

void Instalar(int sinal, void (*tratador)(int)) {
  struct sigaction acao {};
  acao.sa_handler = tratador;
  sigemptyset(&acao.sa_mask);
  acao.sa_flags = SA_RESTART;
  sigaction(sinal, &acao, nullptr);
}

}  // namespace

SinaisDeParada::SinaisDeParada(QObject* parent) : QObject(parent) {
  if (g_descritores[0] == -1 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, g_descritores) != 0) return;
  notificador_ = new QSocketNotifier(g_descritores[1], QSocketNotifier::Read, this);
  connect(notificador_, &QSocketNotifier::activated, this, [this] {
    char byte;
    [[maybe_unused]] const ssize_t lido = ::read(g_descritores[1], &byte, 1);
    emit Parar();
  });
  Instalar(SIGINT, AoSinal);
  Instalar(SIGTERM, AoSinal);
}

SinaisDeParada::~SinaisDeParada() {
  if (!notificador_) return;
  Instalar(SIGINT, SIG_DFL);
  Instalar(SIGTERM, SIG_DFL);
}

#else

// The Windows console's stop events do not reach a window program this way; closing the window
// or its tray menu ends it there.
SinaisDeParada::SinaisDeParada(QObject* parent) : QObject(parent) {}
SinaisDeParada::~SinaisDeParada() = default;

#endif

}  // namespace lumavox::app
