#include "app/cls_tray_icon.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <QWidget>

namespace lumavox::app {
namespace {

TEST(TrayIcon, DicaCortadaAoCampoDoShell) {
  clsTrayIcon tray;
  tray.fn_ShowIcon(nullptr, QIcon(), QString(70, 'a'));
  EXPECT_EQ(tray.Icone().toolTip(), QString(63, 'a'));
  tray.fn_ShowIcon(nullptr, QIcon(), QString("Lumavox") + QChar(0) + "resto");
  EXPECT_EQ(tray.Icone().toolTip(), "Lumavox");
  EXPECT_TRUE(tray.Icone().isVisible());
  tray.fn_HideIcon(nullptr);
  EXPECT_FALSE(tray.Icone().isVisible());
}

TEST(TrayIcon, DuploCliqueRestauraSoAJanelaMinimizadaEAMostraESemJanelaGuardaOErro) {
  clsTrayIcon tray;
  QWidget minimizada, maximizada;
  minimizada.setWindowState(Qt::WindowMinimized);
  maximizada.setWindowState(Qt::WindowMaximized);
  tray.fn_MouseMove(&minimizada, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  tray.fn_MouseMove(&maximizada, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  EXPECT_EQ(minimizada.windowState(), Qt::WindowNoState);
  EXPECT_EQ(maximizada.windowState(), Qt::WindowMaximized);
  EXPECT_TRUE(minimizada.isVisible());

  // Other messages (a left click, a plain move) leave the window alone.
  QWidget oculta;
  tray.fn_MouseMove(&oculta, clsTrayIcon::kMensagemEsquerdoSolto, Qt::WindowNoState, nullptr);
  EXPECT_FALSE(oculta.isVisible());
  EXPECT_EQ(tray.UltimaMensagem(), clsTrayIcon::kMensagemEsquerdoSolto);

  // Without a window the error is listed, counted from -1, and the busy flag still drops.
  EXPECT_EQ(tray.ContagemErros(), -1);
  tray.fn_MouseMove(nullptr, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
  tray.fn_MouseMove(nullptr, clsTrayIcon::kMensagemDuploClique, Qt::WindowNoState, nullptr);
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
