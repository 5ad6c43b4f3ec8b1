#include "app/regras_teste.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "app/ambiente_janela.h"
#include "app/arvore_log.h"
#include "app/cls_tray_icon.h"
#include "app/lista_arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"
#include "engine/conferencia.h"
#include "engine/instalacao.h"
#include "stores/saida.h"

namespace lumavox::app {

namespace {

QString Q(const std::filesystem::path& p) { return QString::fromStdU16String(p.u16string()); }

template <typename T>
T* Nomeado(T* objeto, const char* nome) {
  objeto->setObjectName(QString::fromLatin1(nome));
  return objeto;
}

}  // namespace

RegrasTeste::RegrasTeste(std::filesystem::path caminhoApp, Ambiente* ambiente, QWidget* parent)
    : QWidget(parent) {
  if (!ambiente) {
    ambienteProprio_ = std::make_unique<AmbienteJanela>();
    ambiente = ambienteProprio_.get();
  }
  ambiente_ = ambiente;
  motor_ = std::make_unique<Motor>(std::move(caminhoApp), *ambiente_);
  InstalarHistorico(*motor_);
  motor_->DefinirPainel(this);

  setObjectName("RegrasTeste");
  setWindowTitle("Form1");

  // Created in the form's order, so the tab order and the object tree follow it.
  textPlaylist_ = Nomeado(new QLineEdit(this), "textPlaylist");
  textPlaylist_->setReadOnly(true);
  command1_ = Nomeado(new QPushButton("GerarMusica :", this), "Command1");
  text1_ = Nomeado(new QLineEdit(this), "Text1");
  timer1_ = Nomeado(new QTimer(this), "Timer1");
  timer1_->setSingleShot(true);
  timer1_->setInterval(kIntervaloTimer);
  file1_ = Nomeado(new ListaArquivos(this), "File1");
  file1_->DefinirPadrao("*.mre");
  file1_->DefinirPasta(Q(motor_->CaminhoApp()));
  check1_ = Nomeado(new QCheckBox("Check1", this), "Check1");
  sstab1_ = Nomeado(new QTabWidget(this), "SSTab1");
  textoDebug_ = Nomeado(new QPlainTextEdit(sstab1_), "TextoDebug");
  textoDebug_->setReadOnly(true);
  textoDebug_->setMaximumBlockCount(kLinhasDebug);
  sstab1_->addTab(textoDebug_, "Debug Original");
  tree1_ = Nomeado(new ArvoreLog(sstab1_), "Tree1");
  sstab1_->addTab(tree1_, "Arvore");
  label3_ = Nomeado(new QLabel("Playlist Atual :", this), "Label3");
  label2_ = Nomeado(new QLabel("Label2", this), "Label2");
  label1_ = Nomeado(new QLabel("Label1", this), "Label1");
  mnuPopUp_ = Nomeado(new QMenu("Popup Menu", this), "mnuPopUp");
  itmFechar_ = Nomeado(mnuPopUp_->addAction("Fechar"), "itmFechar");

  auto* linhaPlaylist = new QHBoxLayout;
  linhaPlaylist->addWidget(label3_);
  linhaPlaylist->addWidget(textPlaylist_, 1);
  auto* linhaPedido = new QHBoxLayout;
  linhaPedido->addWidget(command1_);
  text1_->setMaximumWidth(120);
  linhaPedido->addWidget(text1_);
  linhaPedido->addSpacing(12);
  linhaPedido->addWidget(check1_);
  linhaPedido->addSpacing(12);
  linhaPedido->addWidget(label2_);
  linhaPedido->addSpacing(12);
  linhaPedido->addWidget(label1_);
  linhaPedido->addStretch(1);
  auto* corpo = new QHBoxLayout;
  file1_->setMaximumWidth(220);
  corpo->addWidget(file1_);
  corpo->addWidget(sstab1_, 1);
  auto* tudo = new QVBoxLayout(this);
  tudo->addLayout(linhaPlaylist);
  tudo->addLayout(linhaPedido);
  tudo->addLayout(corpo, 1);
  resize(800, 560);

  setTabOrder(textPlaylist_, command1_);
  setTabOrder(command1_, text1_);
  setTabOrder(text1_, file1_);
  setTabOrder(file1_, check1_);
  setTabOrder(check1_, sstab1_);

  connect(command1_, &QPushButton::clicked, this, &RegrasTeste::Command1_Click);
  connect(timer1_, &QTimer::timeout, this, &RegrasTeste::Timer1_Timer);
  connect(itmFechar_, &QAction::triggered, this, &RegrasTeste::itmFechar_Click);
}

RegrasTeste::~RegrasTeste() { motor_->DefinirPainel(nullptr); }

void RegrasTeste::Form_Load() {
  motor_->E().execucao.MusicaForcada = 0;
  if (motor_->DetectarModoDebug()) {
    // A missing or unreadable picture leaves the icon blank but present, as the shell would.
    QPixmap figura(Q(motor_->CaminhoApp() / "lumavox.ico"));
    if (figura.isNull()) {
      figura = QPixmap(16, 16);
      figura.fill(Qt::transparent);
    }
    trayIcon_ = new clsTrayIcon(this);
    connect(trayIcon_, &clsTrayIcon::MensagemMouse, this, &RegrasTeste::Form_MouseMove);
    trayIcon_->fn_ShowIcon(this, QIcon(figura), "Lumavox");
    check1_->setChecked(true);
  } else {
    check1_->setChecked(false);
  }
  try {
    motor_->CarregarInicio();
  } catch (const std::exception& e) {
    qWarning("aviso: %s", e.what());
  }
  if (motor_->UltimoErro()) qWarning("aviso: %s", motor_->UltimoErro()->c_str());
  tree1_->Sincronizar(motor_->E().log);
  LerDebug();
  if (ModoDebug()) MostrarConferencia();
  timer1_->start(kIntervaloTimer);
  // Outside debug mode the engine works unseen; the window has no other way to be reached.
  if (ModoDebug()) show();
}

void RegrasTeste::Form_MouseMove(int mensagem) {
  if (ModoDebug() && trayIcon_) trayIcon_->fn_MouseMove(this, mensagem, Qt::WindowNoState, mnuPopUp_);
}

void RegrasTeste::Command1_Click() {
  try {
    motor_->E().execucao.MusicaForcada = ParaInteiro32(ValorNumerico(text1_->text().toStdU16String()));
  } catch (const ErroExecucao&) {
    // A number past the 32-bit range is no song code; the request stays as it was.
  }
}

void RegrasTeste::Timer1_Timer() {
  timer1_->stop();
  if (encerrado_ || emExecucao_) return;
  emExecucao_ = true;
  int intervalo = kIntervaloTimer;
  try {
    intervalo = motor_->TestarRegras().proximoIntervaloMs;
  } catch (const Encerramento&) {
    // The window was closed during the run: nothing more of it is done.
  } catch (const std::exception& e) {
    qWarning("aviso: TestarRegras: %s", e.what());
  }
  emExecucao_ = false;
  if (!encerrado_) {
    AtualizarTela();
    timer1_->start(intervalo);
  }
  emit ExecucaoTerminada();
}

void RegrasTeste::itmFechar_Click() { close(); }

void RegrasTeste::closeEvent(QCloseEvent* evento) {
  Form_Unload();
  evento->accept();
}

void RegrasTeste::Form_Unload() {
  if (encerrado_) return;
  encerrado_ = true;
  timer1_->stop();
  if (ModoDebug() && trayIcon_) trayIcon_->fn_HideIcon(this);
  if (ambienteProprio_) ambienteProprio_->Interromper();
  emit ProgramaEncerrado();
}

void RegrasTeste::MostrarPlaylist(const std::filesystem::path& pastaDados) {
  textPlaylist_->setText(Q(pastaDados));
  // The debug file still holds the line written before this load replaces it.
  LerDebug();
}

void RegrasTeste::MostrarContagemAvancos(int contagem) {
  label2_->setText(QString::number(contagem));
  MostrarFila();
}

void RegrasTeste::MostrarFila() {
  // The run lists its queue through File1: the "list" folder, queue files only.
  file1_->DefinirPadrao("*.lre");
  file1_->DefinirPasta(Q(motor_->CaminhoApp() / "list"));
}

void RegrasTeste::Ceder() {
  if (encerrado_) throw Encerramento{};
  tree1_->Sincronizar(motor_->E().log);
  QCoreApplication::processEvents();
  if (encerrado_) throw Encerramento{};
}

void RegrasTeste::AtualizarTela() {
  tree1_->Sincronizar(motor_->E().log);
  MostrarFila();
  LerDebug();
}

void RegrasTeste::MostrarConferencia() {
  const std::vector<Constatacao> lista =
      ConferirEstacao(motor_->Amb().Arquivos(), motor_->CaminhoApp(), motor_->Amb().Agora());
  auto* texto = Nomeado(new QPlainTextEdit(sstab1_), "TextoConferencia");
  texto->setReadOnly(true);
  for (const Constatacao& c : lista)
    texto->appendPlainText(QString::fromStdString(FormatarConstatacao(c)));
  if (lista.empty()) texto->setPlainText("Nenhum problema encontrado na estação.");
  const int aba =
      sstab1_->addTab(texto, lista.empty() ? QString("Conferência")
                                           : QString("Conferência (%1)").arg(lista.size()));
  // An error spoils the programming: the window opens on it rather than on the debug lines.
  if (TemErro(lista)) sstab1_->setCurrentIndex(aba);
}

void RegrasTeste::LerDebug() {
  if (!ModoDebug()) return;
  const std::filesystem::path arquivo = motor_->CaminhoApp() / "debuglog.rer";
  std::error_code ec;
  const auto momento = std::filesystem::last_write_time(arquivo, ec);
  if (ec) return;
  const std::optional<Texto> linha = LerPrimeiraLinha(motor_->Amb().Arquivos(), arquivo);
  if (!linha) return;
  if (ultimoDebug_ && ultimoDebug_->first == momento && ultimoDebug_->second == *linha) return;
  ultimoDebug_.emplace(momento, *linha);
  textoDebug_->appendPlainText(QString::fromStdU16String(*linha));
}

}  // namespace lumavox::app
