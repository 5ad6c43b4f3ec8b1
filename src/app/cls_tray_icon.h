// The notification-area icon of the window. It keeps the classic tray-icon class's contract on
// top of QSystemTrayIcon: the tip is cut to the shell's 64-character field, the icon's mouse
// messages (Qt's activation reasons, translated to the shell's message numbers) either restore
// the window or pop up a menu, a busy flag keeps a message that arrives while the menu is open
// from being handled twice, and the class keeps a list of its own errors instead of raising them.
#pragma once

#include <QIcon>
#include <QObject>
#include <QStringList>
#include <QSystemTrayIcon>
#include <QVariant>

class QMenu;
class QWidget;

namespace lumavox::app {

class clsTrayIcon : public QObject {
  Q_OBJECT

 public:
  // Mouse messages as the shell numbers them; the form hands them to fn_MouseMove.
  static constexpr int kMensagemMovimento = 512;
  static constexpr int kMensagemEsquerdoSolto = 514;
  static constexpr int kMensagemDuploClique = 515;
  static constexpr int kMensagemDireitoSolto = 517;
  static constexpr int kMensagemMeioSolto = 520;
  // The tip field holds 64 characters including its terminating zero.
  static constexpr int kCampoDica = 64;

  // Starts with an empty error list (count -1).
  explicit clsTrayIcon(QObject* parent = nullptr);

  // Adds the icon with its picture and tip; returns 1 when a notification area took it, else 0.
  long fn_ShowIcon(QWidget* form, const QIcon& icone, const QString& dica);
  // Removes the icon; returns 1 when it was shown.
  long fn_HideIcon(QWidget* form);
  // Double click: a minimised form gets `estadoRestaurar`, then is shown. Right-button release:
  // `menu`, when one is passed, pops up (and runs until it closes). Other messages do nothing.
  void fn_MouseMove(QWidget* form, int mensagem, Qt::WindowStates estadoRestaurar, QMenu* menu);
  // Walks the error list and produces nothing; returns an empty value.
  QVariant hf_DumpErr() const;

  static int MensagemDe(QSystemTrayIcon::ActivationReason motivo);
  // The run-time library's text for an error number.
  static QString MensagemErro(int numero);

  const QStringList& Erros() const { return erros_; }
  long ContagemErros() const { return contagemErros_; }
  int UltimaMensagem() const { return ultimaMensagem_; }
  bool Ocupado() const { return ocupado_; }
  QSystemTrayIcon& Icone() { return icone_; }

 signals:
  // A mouse message from the icon, already translated; the form decides whether to pass it on.
  void MensagemMouse(int mensagem);

 private:
  void RegistrarErro(const QString& procedimento, int numero, const QString& descricao);

  QSystemTrayIcon icone_;
  QStringList erros_;
  long contagemErros_ = -1;
  int ultimaMensagem_ = 0;
  bool ocupado_ = false;
};

}  // namespace lumavox::app
