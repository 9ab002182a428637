#include "widgets/FileDrop.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <utility>

namespace hylden {

namespace {

/// The one file of the kind that is dragged; empty when it is anything else.
QString DraggedFile(const QMimeData* data, const QString& suffix) {
  const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
  if (urls.size() != 1 || !urls.first().isLocalFile()) return {};
  const QString path = urls.first().toLocalFile();
  return QFileInfo(path).suffix().compare(suffix, Qt::CaseInsensitive) == 0 ? path : QString();
}

}  // namespace

FileDrop::FileDrop(QWidget* window, const QString& suffix, std::function<void(const QString&)> onDropped)
    : QObject(window), suffix_(suffix), onDropped_(std::move(onDropped)) {
  window->setAcceptDrops(true);
  window->installEventFilter(this);
  // A box would take a dropped file for text.
  for (QLineEdit* const box : window->findChildren<QLineEdit*>()) box->setAcceptDrops(false);
}

bool FileDrop::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::DragEnter && event->type() != QEvent::Drop) return QObject::eventFilter(watched, event);
  auto* const drop = static_cast<QDropEvent*>(event);
  const QString path = DraggedFile(drop->mimeData(), suffix_);
  const QWidget* const modal = QApplication::activeModalWidget();
  const bool blocked = modal && modal != watched;  // a command of the window waits for an answer
  if (path.isEmpty() || blocked) return true;
  drop->acceptProposedAction();
  if (event->type() == QEvent::Drop) QTimer::singleShot(0, this, [this, path] { onDropped_(path); });
  return true;
}

}  // namespace hylden
