#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <csignal>

#include "apoio/estacao.h"
#include "app/arvore_log.h"
#include "app/cls_tray_icon.h"
#include "app/lista_arquivos.h"
#include "app/regras_teste.h"
#include "app/sinais.h"
#include "cli/demo.h"

namespace lumavox::app {
namespace {


class Janela : public ::testing::Test {
 protected:
  // Debug mode rewrites debuglog.rer for every line of the collection: keep those stations small.
  void Abrir(bool debug, int musicas = 300) {
    cli::OpcoesDemo opcoes;
    opcoes.musicas = musicas;
    cli::GerarEstacaoDemo(estacao.Pasta(), opcoes);
    if (debug) estacao.GravarTexto("debug.red", "");
    form = std::make_unique<RegrasTeste>(estacao.Pasta(), &ambiente);
    form->Form_Load();
  }
  template <typename T>
  T* C(const char* nome) {
    T* controle = form->findChild<T*>(nome);
    EXPECT_NE(controle, nullptr) << nome;
    return controle;
  }
  QTreeWidgetItem* Selecao(const char* chave) { return C<ArvoreLog>("Tree1")->ProcurarSelecao(chave); }
  std::vector<std::string> Fila() const { return estacao.Nomes("list"); }

  teste::EstacaoTeste estacao;
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0), 7};
  std::unique_ptr<RegrasTeste> form;
};

TEST_F(Janela, ModoDebugComIconeJanelaELinhasNaOrdemDaPartida) {
  QImage vermelho(16, 16, QImage::Format_ARGB32);
  vermelho.fill(Qt::red);
  ASSERT_TRUE(vermelho.save(QString::fromStdString(estacao.Caminho("lumavox.ico").string()), "ICO"));
  Abrir(true, 5);
  ASSERT_NE(form->TrayIcon(), nullptr);
  QSystemTrayIcon& icone = form->TrayIcon()->Icone();
  EXPECT_TRUE(icone.isVisible());
  EXPECT_EQ(icone.icon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
  EXPECT_TRUE(C<QCheckBox>("Check1")->isChecked());
  EXPECT_TRUE(form->isVisible());
  // The playlists were read before the collection load replaced the line.
  EXPECT_EQ(C<QPlainTextEdit>("TextoDebug")->toPlainText(), "Abriu Playlists\nMusica: 5");
  EXPECT_EQ(estacao.Ler("debuglog.rer"), "Musica: 5\n");
  // Five songs never get a song on air: the station check says so where the window opens.
  EXPECT_TRUE(C<QPlainTextEdit>("TextoConferencia")->toPlainText().contains("erro: lxdb.rdb: só 5 músicas"));
  EXPECT_EQ(C<QTabWidget>("SSTab1")->currentWidget()->objectName(), "TextoConferencia");

  // The icon's double click reaches the window through the form.
  form->showMinimized();
  emit icone.activated(QSystemTrayIcon::DoubleClick);
  EXPECT_FALSE(form->windowState() & Qt::WindowMinimized);

  // Its menu's "Fechar" removes it and ends the program; a tick already queued does nothing.
  QSignalSpy encerrou(form.get(), &RegrasTeste::ProgramaEncerrado);
  C<QAction>("itmFechar")->trigger();
  EXPECT_EQ(encerrou.count(), 1);
  EXPECT_FALSE(icone.isVisible());
  form->Timer1_Timer();
  EXPECT_TRUE(Fila().empty());
}

TEST_F(Janela, ForaDoModoDebugOBotaoPedeAMusicaEOTimerPreencheArvoreEFila) {
  Abrir(false);
  EXPECT_EQ(form->TrayIcon(), nullptr);
  EXPECT_FALSE(C<QCheckBox>("Check1")->isChecked());
  EXPECT_FALSE(form->isVisible());
  EXPECT_FALSE(estacao.Existe("debuglog.rer"));
  Execucao& x = form->MotorSelecao().E().execucao;
  for (const auto& [texto, forcada] : {std::pair{"abc", 0}, std::pair{"1035", 1035}}) {
    C<QLineEdit>("Text1")->setText(texto);
    QTest::mouseClick(C<QPushButton>("Command1"), Qt::LeftButton);
    EXPECT_EQ(x.MusicaForcada, forcada) << texto;
  }
  QSignalSpy terminou(form.get(), &RegrasTeste::ExecucaoTerminada);
  form->Timer1_Timer();
  EXPECT_EQ(terminou.count(), 1);
  EXPECT_TRUE(C<QTimer>("Timer1")->isActive());
  EXPECT_EQ(C<QLabel>("Label2")->text(), "0");

  // The queue holds two songs; the first is the one asked for.
  const QStringList nomes = C<ListaArquivos>("File1")->Nomes();
  EXPECT_EQ(nomes.size(), 2);
  EXPECT_TRUE(nomes.value(0).startsWith("000001_0001035_"));

  ASSERT_NE(Selecao("P0"), nullptr);
  ASSERT_NE(Selecao("P1"), nullptr);
  QTreeWidgetItem* escolhida = ArvoreLog::ProcurarFilho(Selecao("P0"), "E0");
  ASSERT_NE(escolhida, nullptr);
  EXPECT_TRUE(escolhida->text(0).endsWith("-> 1035"));
}

TEST_F(Janela, SigtermDuranteAExecucaoFechaAJanelaEAbandonaONaHora) {
  Abrir(false);
  SinaisDeParada sinais;
  QObject::connect(&sinais, &SinaisDeParada::Parar, form.get(), &QWidget::close);
  QSignalSpy encerrou(form.get(), &RegrasTeste::ProgramaEncerrado);
  QTimer::singleShot(0, [] { std::raise(SIGTERM); });
  form->Timer1_Timer();
  EXPECT_TRUE(QTest::qWaitFor([&] { return encerrou.count() == 1; }, 2000));
  EXPECT_TRUE(form->Encerrado());
  EXPECT_TRUE(Fila().empty());
  EXPECT_FALSE(C<QTimer>("Timer1")->isActive());
}

TEST(TrayIcon, DicaCortadaEDuploCliqueRestauraSoAMinimizadaESemJanelaGuardaOErro) {
  clsTrayIcon tray;
  tray.fn_ShowIcon(nullptr, QIcon(), QString(70, 'a'));
  EXPECT_EQ(tray.Icone().toolTip(), QString(63, 'a'));
  tray.fn_ShowIcon(nullptr, QIcon(), QString("Lumavox") + QChar(0) + "resto");
  EXPECT_EQ(tray.Icone().toolTip(), "Lumavox");
  tray.fn_HideIcon(nullptr);
  EXPECT_FALSE(tray.Icone().isVisible());

  // Other messages (here a left click) leave the window alone.
  QWidget minimizada, maximizada, oculta;
  minimizada.setWindowState(Qt::WindowMinimized);
  maximizada.setWindowState(Qt::WindowMaximized);
  for (QWidget* w : {&minimizada, &maximizada})
    tray.fn_MouseMove(w, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  tray.fn_MouseMove(&oculta, clsTrayIcon::kMensagemEsquerdoSolto, Qt::WindowNoState, nullptr);
  EXPECT_EQ(minimizada.windowState(), Qt::WindowNoState);
  EXPECT_EQ(maximizada.windowState(), Qt::WindowMaximized);
  EXPECT_TRUE(minimizada.isVisible());
  EXPECT_FALSE(oculta.isVisible());
  EXPECT_EQ(tray.UltimaMensagem(), clsTrayIcon::kMensagemEsquerdoSolto);

  // Without a window the error is listed, counted from -1, and the busy flag still drops.
  EXPECT_EQ(tray.ContagemErros(), -1);
  for (int i = 0; i < 2; ++i) tray.fn_MouseMove(nullptr, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  EXPECT_EQ(tray.ContagemErros(), 1);
  ASSERT_EQ(tray.Erros().size(), 2);
  EXPECT_EQ(tray.Erros()[0], "fn_MouseMove: Error Object variable or With block variable not set - no form to restore");
  EXPECT_FALSE(tray.Ocupado());
}

TEST(TrayIcon, MenuSoNoBotaoDireitoComMenuEMensagensIgnoradasEnquantoAberto) {
  clsTrayIcon tray;
  QWidget form;
  QMenu menu;
  menu.addAction("Fechar");
  int abertos = 0;
  bool ocupadoComMenu = false;
  // Closes whatever popped up, counting it; meanwhile a double click arrives and is turned away.
  auto vigiar = [&] {
    QTimer::singleShot(50, [&] {
      if (QApplication::activePopupWidget() != &menu) return;
      ++abertos;
      ocupadoComMenu = tray.Ocupado();
      tray.fn_MouseMove(&form, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, &menu);
      menu.close();
    });
  };

  vigiar();
  tray.fn_MouseMove(&form, clsTrayIcon::kMensagemDireitoSolto, Qt::WindowNoState, nullptr);
  tray.fn_MouseMove(&form, clsTrayIcon::kMensagemEsquerdoSolto, Qt::WindowNoState, &menu);
  QApplication::processEvents();
  EXPECT_EQ(abertos, 0);

  vigiar();
  tray.fn_MouseMove(&form, clsTrayIcon::kMensagemDireitoSolto, Qt::WindowNoState, &menu);
  EXPECT_EQ(abertos, 1);
  EXPECT_TRUE(ocupadoComMenu);
  EXPECT_FALSE(tray.Ocupado());
  EXPECT_FALSE(form.isVisible());  // the double click came while busy
  EXPECT_EQ(tray.UltimaMensagem(), clsTrayIcon::kMensagemDuploClique);
}

}  // namespace
}  // namespace lumavox::app
