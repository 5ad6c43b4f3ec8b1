#include "app/ambiente_janela.h"

#include <QEventLoop>
#include <QTimer>

namespace lumavox::app {

void AmbienteJanela::Esperar(int milissegundos) {
  if (interrompido_) throw Encerramento{};
  if (milissegundos > 0) {
    QEventLoop laco;
    QTimer::singleShot(milissegundos, &laco, &QEventLoop::quit);
    laco_ = &laco;
    laco.exec();
    laco_ = nullptr;
  }
  if (interrompido_) throw Encerramento{};
}

void AmbienteJanela::Interromper() {
  interrompido_ = true;
  if (laco_) laco_->quit();
}

}  // namespace lumavox::app
