// A file list control: the names of the files of one folder that match one pattern, in name
// order, read again whenever the folder, the pattern or the folder's contents are refreshed.
#pragma once

#include <QListWidget>
#include <QString>

namespace lumavox::app {

class ListaArquivos : public QListWidget {
  Q_OBJECT

 public:
  explicit ListaArquivos(QWidget* parent = nullptr);

  void DefinirPasta(const QString& pasta);
  void DefinirPadrao(const QString& padrao);
  void Atualizar();
  QStringList Nomes() const;

 private:
  QString pasta_;
  QString padrao_ = QStringLiteral("*.*");
};

}  // namespace lumavox::app
