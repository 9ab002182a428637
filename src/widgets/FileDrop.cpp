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

/// The one file of the kinds that is dragged; empty when it is anything else.
QString DraggedFile(const QMimeData* data, const QStringList& suffixes) {
  const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
  if (urls.size() != 1 || !urls.first().isLocalFile()) return {};
  const QString path = urls.first().toLocalFile();
  return suffixes.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive) ? path : QString();
}

}  // namespace

FileDrop::FileDrop(QWidget* window, const QString& suffix, std::function<void(const QString&)> onDropped)
    : QObject(window), suffixes_(suffix.split(QLatin1Char(' '))), onDropped_(std::move(onDropped)) {
  window->setAcceptDrops(true);
  window->installEventFilter(this);
  // A box would take a dropped file for text.
  for (QLineEdit* const box : window->findChildren<QLineEdit*>()) box->setAcceptDrops(false);
}

bool FileDrop::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::DragEnter && event->type() != QEvent::Drop) return QObject::eventFilter(watched, event);
  auto* const drop = static_cast<QDropEvent*>(event);
  const QString path = DraggedFile(drop->mimeData(), suffixes_);
  const QWidget* const modal = QApplication::activeModalWidget();
  const bool blocked = modal && modal != watched;  // a command of the window waits for an answer
  if (path.isEmpty() || blocked) return true;
  drop->acceptProposedAction();
  if (event->type() == QEvent::Drop) QTimer::singleShot(0, this, [this, path] { onDropped_(path); });
  return true;
}

}  // namespace hylden
