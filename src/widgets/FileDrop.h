#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace hylden {

/// Takes one file of a kind that is dropped on a window or any of its boxes, unless a modal box stands above it.
class FileDrop : public QObject {
 public:
  /// @param suffix    of the files taken, without its point, in any case; several are separated by blanks
  /// @param onDropped called with the path, after the drop has ended, so that it may show dialogs
  FileDrop(QWidget* window, const QString& suffix, std::function<void(const QString&)> onDropped);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QStringList suffixes_;
  std::function<void(const QString&)> onDropped_;
};

}  // namespace hylden
