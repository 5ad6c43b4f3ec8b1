#include "app/cls_tray_icon.h"

#include <QCursor>
#include <QMenu>
#include <QWidget>

namespace lumavox::app {

clsTrayIcon::clsTrayIcon(QObject* parent) : QObject(parent), icone_(this) {
  connect(&icone_, &QSystemTrayIcon::activated, this,
          [this](QSystemTrayIcon::ActivationReason motivo) { emit MensagemMouse(MensagemDe(motivo)); });
}

int clsTrayIcon::MensagemDe(QSystemTrayIcon::ActivationReason motivo) {
  switch (motivo) {
    case QSystemTrayIcon::DoubleClick: return kMensagemDuploClique;
    case QSystemTrayIcon::Context: return kMensagemDireitoSolto;
    case QSystemTrayIcon::Trigger: return kMensagemEsquerdoSolto;
    case QSystemTrayIcon::MiddleClick: return kMensagemMeioSolto;
    default: return kMensagemMovimento;
  }
}

long clsTrayIcon::fn_ShowIcon(QWidget* /*form*/, const QIcon& icone, const QString& dica) {
  // The shell copies the tip up to its terminating zero, and at most 63 characters fit.
  const qsizetype zero = dica.indexOf(QChar(0));
  icone_.setIcon(icone);
  icone_.setToolTip((zero >= 0 ? dica.left(zero) : dica).left(kCampoDica - 1));
  icone_.show();
  return QSystemTrayIcon::isSystemTrayAvailable() ? 1 : 0;
}

long clsTrayIcon::fn_HideIcon(QWidget* /*form*/) {
  const bool estava = icone_.isVisible();
  icone_.hide();
  return estava ? 1 : 0;
}

void clsTrayIcon::fn_MouseMove(QWidget* form, int mensagem, Qt::WindowStates estadoRestaurar, QMenu* menu) {
  ultimaMensagem_ = mensagem;
  if (ocupado_) return;
  ocupado_ = true;
  if (mensagem == kMensagemDuploClique) {
    if (!form) {
      RegistrarErro("fn_MouseMove", 91, "no form to restore");
    } else {
      if (form->windowState() & Qt::WindowMinimized) form->setWindowState(estadoRestaurar);
      form->show();
      form->raise();
      form->activateWindow();
    }
  } else if (mensagem == kMensagemDireitoSolto && menu) {
    // Runs its own event loop until the menu closes; the busy flag turns away icon messages
    // that arrive meanwhile.
    menu->exec(QCursor::pos());
  }
  ocupado_ = false;
}

QVariant clsTrayIcon::hf_DumpErr() const {
  for (long i = 0; i <= contagemErros_; ++i) {
    // The dump was never wired to an output; the walk is kept, the lines go nowhere.
  }
  return {};
}

QString clsTrayIcon::MensagemErro(int numero) {
  switch (numero) {
    case 5: return "Invalid procedure call or argument";
    case 6: return "Overflow";
    case 7: return "Out of memory";
    case 9: return "Subscript out of range";
    case 13: return "Type mismatch";
    case 53: return "File not found";
    case 57: return "Device I/O error";
    case 70: return "Permission denied";
    case 91: return "Object variable or With block variable not set";
    default: return "Application-defined or object-defined error";
  }
}

void clsTrayIcon::RegistrarErro(const QString& procedimento, int numero, const QString& descricao) {
  ++contagemErros_;
  // The message text, not the number, follows ": Error ".
  erros_.append(procedimento + ": Error " + MensagemErro(numero) + " - " + descricao);
}

}  // namespace lumavox::app
