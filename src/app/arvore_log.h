// The rule log as a tree view: one top-level entry per selection, under it the entries of the
// rules, the remaining songs and the chosen song, each carrying its log key. The tree mirrors
// the log, so it holds the selections the log keeps and drops the oldest with it. Song entries
// are made the first time their parent entry is opened: a selection can name thousands of songs,
// and most are never looked at.
#pragma once

#include <QString>
#include <QTreeWidget>

#include "state/log.h"

namespace lumavox::app {

class ArvoreLog : public QTreeWidget {
  Q_OBJECT

 public:
  static constexpr int kPapelChave = Qt::UserRole;
  static constexpr int kPapelPendente = Qt::UserRole + 1;  // song entries not made yet

  explicit ArvoreLog(QWidget* parent = nullptr);

  // Brings the tree in line with the log: selections the log dropped go, new ones are added
  // (the newest opened, the one before it closed), entries a selection gained are appended.
  // Keeps a reference to the log for the song entries made later.
  void Sincronizar(const LogRegras& log);

  static QString Chave(const QTreeWidgetItem* item) { return item->data(0, kPapelChave).toString(); }
  QTreeWidgetItem* ProcurarSelecao(const QString& chave) const;
  static QTreeWidgetItem* ProcurarFilho(const QTreeWidgetItem* pai, const QString& chave);

 private:
  static QTreeWidgetItem* CriarItem(const NoLog& no);
  // `completo`: compare texts too; otherwise an entry with as many children as its log entry is
  // taken as up to date (only the newest selection can change in place).
  static void SincronizarNo(QTreeWidgetItem* item, const NoLog& no, bool completo);
  void CriarMusicas(QTreeWidgetItem* item);
  const NoLog* ProcurarNo(const QTreeWidgetItem* item) const;

  const LogRegras* log_ = nullptr;
  QString chaveAberta_;  // the newest selection, opened by the tree itself
};

}  // namespace lumavox::app
