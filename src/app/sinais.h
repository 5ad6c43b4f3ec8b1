// SIGINT and SIGTERM turned into a Qt signal: the handler only writes a byte to a socket pair,
// and the event loop (the main one or a run's nested wait) reads it and emits Parar.
#pragma once

#include <QObject>

class QSocketNotifier;

namespace lumavox::app {

class SinaisDeParada : public QObject {
  Q_OBJECT

 public:
  explicit SinaisDeParada(QObject* parent = nullptr);
  ~SinaisDeParada() override;

 signals:
  void Parar();

 private:
  QSocketNotifier* notificador_ = nullptr;
};

}  // namespace lumavox::app
