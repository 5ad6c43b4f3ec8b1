#include "app/arvore_log.h"

#include <QHeaderView>
#include <QScrollBar>

#include "base/datas.h"

namespace lumavox::app {

namespace {

QString Q(const Texto& t) { return QString::fromStdU16String(t); }
QString Q(const std::string& s) { return QString::fromStdString(s); }

bool Igual(const QTreeWidgetItem* item, const NoLog& no) {
  return ArvoreLog::Chave(item) == Q(no.chave) && item->text(0) == Q(no.texto);
}

void RemoverFilhosDesde(QTreeWidgetItem* item, int inicio) {
  while (item->childCount() > inicio) delete item->takeChild(item->childCount() - 1);
}

}  // namespace

ArvoreLog::ArvoreLog(QWidget* parent) : QTreeWidget(parent) {
  setColumnCount(1);
  setHeaderHidden(true);
  setUniformRowHeights(true);
  // Rule entries are long lines: scroll sideways rather than cut them.
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  header()->setStretchLastSection(false);
  connect(this, &QTreeWidget::itemExpanded, this, &ArvoreLog::CriarMusicas);
}

QTreeWidgetItem* ArvoreLog::CriarItem(const NoLog& no) {
  auto* item = new QTreeWidgetItem({Q(no.texto)});
  item->setData(0, kPapelChave, Q(no.chave));
  item->setToolTip(0, Q(FormatarIso(no.momento)));
  if (!no.musicas.empty()) {
    item->setData(0, kPapelPendente, true);
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  }
  for (const NoLog& filho : no.filhos) item->addChild(CriarItem(filho));
  return item;
}

void ArvoreLog::SincronizarNo(QTreeWidgetItem* item, const NoLog& no, bool completo) {
  const int total = static_cast<int>(no.filhos.size());
  if (!completo && item->childCount() == total) return;
  if (item->text(0) != Q(no.texto)) {
    // The log replaced a selection that never reached its choice under the same key.
    item->setText(0, Q(no.texto));
    item->setToolTip(0, Q(FormatarIso(no.momento)));
    RemoverFilhosDesde(item, 0);
  }
  int iguais = 0;
  while (iguais < item->childCount() && iguais < total && Igual(item->child(iguais), no.filhos[static_cast<size_t>(iguais)]))
    ++iguais;
  RemoverFilhosDesde(item, iguais);
  for (int i = iguais; i < total; ++i) item->addChild(CriarItem(no.filhos[static_cast<size_t>(i)]));
}

void ArvoreLog::Sincronizar(const LogRegras& log) {
  log_ = &log;
  const std::deque<NoLog>& selecoes = log.Selecoes();
  const int total = static_cast<int>(selecoes.size());
  const QScrollBar* barra = verticalScrollBar();
  const bool noFim = barra->value() == barra->maximum();

  // The log drops its oldest selections from the front.
  const QString primeira = selecoes.empty() ? QString() : Q(selecoes.front().chave);
  while (topLevelItemCount() > 0 && Chave(topLevelItem(0)) != primeira) delete takeTopLevelItem(0);

  QTreeWidgetItem* nova = nullptr;
  for (int i = 0; i < total; ++i) {
    const NoLog& no = selecoes[static_cast<size_t>(i)];
    if (i < topLevelItemCount() && Chave(topLevelItem(i)) == Q(no.chave)) {
      SincronizarNo(topLevelItem(i), no, i == total - 1);
      continue;
    }
    while (topLevelItemCount() > i) delete takeTopLevelItem(topLevelItemCount() - 1);
    nova = CriarItem(no);
    addTopLevelItem(nova);
  }
  while (topLevelItemCount() > total) delete takeTopLevelItem(topLevelItemCount() - 1);

  if (nova) {
    if (QTreeWidgetItem* anterior = ProcurarSelecao(chaveAberta_)) anterior->setExpanded(false);
    nova->setExpanded(true);
    chaveAberta_ = Chave(nova);
  }
  if (noFim) scrollToBottom();
}

QTreeWidgetItem* ArvoreLog::ProcurarSelecao(const QString& chave) const {
  for (int i = topLevelItemCount() - 1; i >= 0; --i)
    if (Chave(topLevelItem(i)) == chave) return topLevelItem(i);
  return nullptr;
}

QTreeWidgetItem* ArvoreLog::ProcurarFilho(const QTreeWidgetItem* pai, const QString& chave) {
  for (int i = 0; i < pai->childCount(); ++i)
    if (Chave(pai->child(i)) == chave) return pai->child(i);
  return nullptr;
}

const NoLog* ArvoreLog::ProcurarNo(const QTreeWidgetItem* item) const {
  if (!log_) return nullptr;
  if (!item->parent()) {
    for (const NoLog& selecao : log_->Selecoes())
      if (Q(selecao.chave) == Chave(item)) return &selecao;
    return nullptr;
  }
  const NoLog* pai = ProcurarNo(item->parent());
  if (!pai) return nullptr;
  for (const NoLog& filho : pai->filhos)
    if (Q(filho.chave) == Chave(item)) return &filho;
  return nullptr;
}

void ArvoreLog::CriarMusicas(QTreeWidgetItem* item) {
  if (!item->data(0, kPapelPendente).toBool()) return;
  item->setData(0, kPapelPendente, false);
  const NoLog* no = ProcurarNo(item);
  if (!no) return;
  QList<QTreeWidgetItem*> musicas;
  musicas.reserve(static_cast<qsizetype>(no->musicas.size()));
  for (const MusicaLog& m : no->musicas) {
    auto* filho = new QTreeWidgetItem({Q(TextoMusica(m))});
    filho->setData(0, kPapelChave, Q(ChaveMusica(*no, m)));
    musicas.append(filho);
  }
  item->addChildren(musicas);
}

}  // namespace lumavox::app
