#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace hylden {

/// Sees Escape wherever the focus is in the windows of a run; in a menu it just leaves the menu.
class EscapeWatch : public QObject {
 public:
  /// @param isOurs  whether a window belongs to the run
  EscapeWatch(std::function<bool(const QWidget& window)> isOurs, std::function<void()> onEscape);

  void Start();
  void Stop();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<bool(const QWidget&)> isOurs_;
  std::function<void()> onEscape_;
};

}  // namespace hylden
