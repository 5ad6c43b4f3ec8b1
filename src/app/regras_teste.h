// The main window, RegrasTeste: it starts the engine (debug mode, tray icon, playlist table,
// first load), drives the selection runs from its one-shot timer, takes a requested song code
// from its button and shows what the engine reports: the data folder, the advance count, the
// queue, the debug lines, the rule log and, in debug mode, the station check.
#pragma once

#include <QWidget>
#include <filesystem>
#include <memory>
#include <optional>

#include "engine/motor.h"
#include "state/painel.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QAction;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTimer;

namespace lumavox::app {

class AmbienteJanela;
class ArvoreLog;
class ListaArquivos;
class clsTrayIcon;

class RegrasTeste : public QWidget, public Painel {
  Q_OBJECT

 public:
  static constexpr int kIntervaloTimer = 1000;
  static constexpr int kLinhasDebug = 500;  // lines the "Debug Original" tab keeps

  // Without `ambiente` the window uses the real clock and waits that keep it responsive.
  explicit RegrasTeste(std::filesystem::path caminhoApp, Ambiente* ambiente = nullptr, QWidget* parent = nullptr);
  ~RegrasTeste() override;

  // The start-up: debug mode, tray icon, Check1, playlist table, first load, then the timer.
  // The window shows itself only in debug mode.
  void Form_Load();

  Motor& MotorSelecao() { return *motor_; }
  bool ModoDebug() const { return motor_->E().ModoDebug; }
  clsTrayIcon* TrayIcon() const { return trayIcon_; }
  bool Encerrado() const { return encerrado_; }

  // Painel
  void MostrarPlaylist(const std::filesystem::path& pastaDados) override;
  void MostrarContagemAvancos(int contagem) override;
  void Ceder() override;

 public slots:
  void Command1_Click();
  void Timer1_Timer();
  void itmFechar_Click();

 signals:
  // The program is to end: the window is unloaded and the tray icon removed.
  void ProgramaEncerrado();
  // A timer-driven run finished (or was abandoned).
  void ExecucaoTerminada();

 protected:
  void closeEvent(QCloseEvent* evento) override;

 private:
  void Form_Unload();
  void Form_MouseMove(int mensagem);
  void AtualizarTela();
  void MostrarFila();
  void LerDebug();
  // Debug mode only: the station check in a tab of its own, opened when it found an error.
  void MostrarConferencia();

  std::unique_ptr<AmbienteJanela> ambienteProprio_;
  Ambiente* ambiente_;
  std::unique_ptr<Motor> motor_;
  clsTrayIcon* trayIcon_ = nullptr;
  bool encerrado_ = false;
  bool emExecucao_ = false;
  std::optional<std::pair<std::filesystem::file_time_type, std::u16string>> ultimoDebug_;

  QLineEdit* textPlaylist_;
  QPushButton* command1_;
  QLineEdit* text1_;
  QTimer* timer1_;
  ListaArquivos* file1_;
  QCheckBox* check1_;
  QTabWidget* sstab1_;
  ArvoreLog* tree1_;
  QLabel* label3_;
  QLabel* label2_;
  QLabel* label1_;
  QMenu* mnuPopUp_;
  QAction* itmFechar_;
  QPlainTextEdit* textoDebug_;
};

}  // namespace lumavox::app
