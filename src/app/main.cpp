// lumavox: the engine with its window. The application folder is --dir, else LUMAVOX_DIR,
// else the executable's own folder; the window appears only when the folder holds "debug.red".
#include <QApplication>
#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTabWidget>
#include <QTimer>

#include "app/regras_teste.h"
#include "app/sinais.h"
#include "base/memoria.h"
#include "engine/instalacao.h"

namespace {

// Saves the whole screen (the tray included) with the rule tree showing once the first run has
// finished, then ends the program as "Fechar" does. Used to check the layout by hand.
void AgendarCaptura(lumavox::app::RegrasTeste& form, const QString& arquivo) {
  QObject::connect(
      &form, &lumavox::app::RegrasTeste::ExecucaoTerminada, &form,
      [&form, arquivo] {
        if (auto* abas = form.findChild<QTabWidget*>("SSTab1")) abas->setCurrentIndex(1);
        // A moment for the tray and the window to paint.
        QTimer::singleShot(700, &form, [&form, arquivo] {
          QPixmap imagem;
          if (QScreen* tela = QGuiApplication::primaryScreen()) imagem = tela->grabWindow(0);
          if (imagem.isNull()) imagem = form.grab();
          if (!imagem.save(arquivo)) qWarning("lumavox: não foi possível gravar %s", qPrintable(arquivo));
          form.close();
        });
      },
      Qt::SingleShotConnection);
}

}  // namespace

int main(int argc, char** argv) {
  lumavox::PrepararAlocador();
  QApplication app(argc, argv);
  QApplication::setApplicationName("lumavox");
  // Hidden outside debug mode, the window is never the "last window" whose closing ends things.
  QApplication::setQuitOnLastWindowClosed(false);

  QCommandLineParser parser;
  parser.setApplicationDescription("Lumavox: o motor de seleção de músicas com a sua janela");
  parser.addHelpOption();
  QCommandLineOption dir("dir", "pasta da aplicação (senão LUMAVOX_DIR, senão a do executável)", "DIR");
  QCommandLineOption captura("screenshot", "grava a tela após a primeira execução e termina", "ARQUIVO");
  captura.setFlags(QCommandLineOption::HiddenFromHelp);
  parser.addOption(dir);
  parser.addOption(captura);
  parser.process(app);

  lumavox::app::RegrasTeste form(lumavox::ResolverPastaApp(parser.value(dir).toStdString()));
  lumavox::app::SinaisDeParada sinais;
  QObject::connect(&sinais, &lumavox::app::SinaisDeParada::Parar, &form, &QWidget::close);
  QObject::connect(&form, &lumavox::app::RegrasTeste::ProgramaEncerrado, &app, &QCoreApplication::quit);
  if (parser.isSet(captura)) AgendarCaptura(form, parser.value(captura));

  form.Form_Load();
  return QApplication::exec();
}
