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
    cli::GerarEstacaoDemo(estacao.Pasta(), {.musicas = musicas});
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
  EXPECT_EQ(icone.icon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
  EXPECT_TRUE(C<QCheckBox>("Check1")->isChecked() && form->isVisible());
  // The playlists were read before the collection load replaced the line.
  EXPECT_EQ(C<QPlainTextEdit>("TextoDebug")->toPlainText(), "Abriu Playlists\nMusica: 5");
  EXPECT_EQ(estacao.Ler("debuglog.rer"), "Musica: 5\n");
  // Five songs never get a song on air: the station check says so where the window opens.
  EXPECT_TRUE(C<QPlainTextEdit>("TextoConferencia")->toPlainText().contains("erro: lxdb.rdb: só 5 músicas"));

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
  EXPECT_FALSE(C<QCheckBox>("Check1")->isChecked() || form->isVisible());
  EXPECT_FALSE(estacao.Existe("debuglog.rer"));
  Execucao& x = form->MotorSelecao().E().execucao;
  for (const auto& [texto, forcada] : {std::pair{"abc", 0}, std::pair{"1035", 1035}}) {
    C<QLineEdit>("Text1")->setText(texto);
    QTest::mouseClick(C<QPushButton>("Command1"), Qt::LeftButton);
    EXPECT_EQ(x.MusicaForcada, forcada) << texto;
  }
  QSignalSpy terminou(form.get(), &RegrasTeste::ExecucaoTerminada);
  form->Timer1_Timer();
  EXPECT_TRUE(terminou.count() == 1 && C<QTimer>("Timer1")->isActive());
  EXPECT_EQ(C<QLabel>("Label2")->text(), "0");

  // The queue holds two songs; the first is the one asked for.
  EXPECT_EQ(C<ListaArquivos>("File1")->Nomes().size(), 2);
  EXPECT_NE(Selecao("P1"), nullptr);
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
  EXPECT_TRUE(form->Encerrado() && Fila().empty());
  EXPECT_FALSE(C<QTimer>("Timer1")->isActive());
}

// One icon: the tip is cut to 63 characters; a double click restores only a minimized window and,
// without one, lists an error; the menu opens only on a right click with a menu, and messages
// arriving while it is open are turned away.
TEST(TrayIcon, DicaDuploCliqueSemJanelaEMenuSoNoBotaoDireito) {
  clsTrayIcon tray;
  tray.fn_ShowIcon(nullptr, QIcon(), QString(70, 'a'));
  EXPECT_EQ(tray.Icone().toolTip(), QString(63, 'a'));

  QWidget minimizada, maximizada, form;
  minimizada.setWindowState(Qt::WindowMinimized);
  maximizada.setWindowState(Qt::WindowMaximized);
  for (QWidget* w : {&minimizada, &maximizada})
    tray.fn_MouseMove(w, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  EXPECT_EQ(minimizada.windowState(), Qt::WindowNoState);
  EXPECT_EQ(maximizada.windowState(), Qt::WindowMaximized);
  EXPECT_TRUE(minimizada.isVisible());
  for (int i = 0; i < 2; ++i)
    tray.fn_MouseMove(nullptr, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  EXPECT_EQ(tray.ContagemErros(), 1);  // counted from -1
  EXPECT_FALSE(tray.Ocupado());

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
  tray.fn_MouseMove(&form, clsTrayIcon::kMensagemEsquerdoSolto, Qt::WindowNoState, &menu);
  EXPECT_FALSE(form.isVisible());  // a left click leaves the window alone
  vigiar();
  tray.fn_MouseMove(&form, clsTrayIcon::kMensagemDireitoSolto, Qt::WindowNoState, &menu);
  EXPECT_TRUE(abertos == 1 && ocupadoComMenu && !tray.Ocupado());
  EXPECT_FALSE(form.isVisible());  // the double click came while busy
  EXPECT_EQ(tray.UltimaMensagem(), clsTrayIcon::kMensagemDuploClique);
}

}  // namespace
}  // namespace lumavox::app
