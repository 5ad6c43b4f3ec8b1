#include "app/lista_arquivos.h"

#include <QDir>

namespace lumavox::app {

ListaArquivos::ListaArquivos(QWidget* parent) : QListWidget(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
}

void ListaArquivos::DefinirPasta(const QString& pasta) {
  pasta_ = pasta;
  Atualizar();
}

void ListaArquivos::DefinirPadrao(const QString& padrao) {
  padrao_ = padrao;
  Atualizar();
}

void ListaArquivos::Atualizar() {
  const QStringList nomes =
      pasta_.isEmpty() ? QStringList() : QDir(pasta_).entryList({padrao_}, QDir::Files, QDir::Name);
  if (nomes == Nomes()) return;  // keeps the selection and the scroll when nothing changed
  clear();
  addItems(nomes);
}

QStringList ListaArquivos::Nomes() const {
  QStringList nomes;
  for (int i = 0; i < count(); ++i) nomes.append(item(i)->text());
  return nomes;
}

}  // namespace lumavox::app
