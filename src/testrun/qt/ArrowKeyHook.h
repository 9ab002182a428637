#pragma once

#include <QObject>
#include <functional>

#include "testrun/ManualPanel.h"

namespace hylden {

class Dialogs;

/// Catches the arrow keys wherever the focus is in the program, but for what needs them itself: a box, a menu, a text
/// input, the manual. A press goes to the one who installed the hook and nowhere else; releases and all other keys pass
/// on.
class ArrowKeyHook : public QObject {
  Q_OBJECT

 public:
  explicit ArrowKeyHook(std::function<void(ArrowKey)> onKey);
  ~ArrowKeyHook() override { Remove(); }

  /// @return false after a message when a hook is installed already
  bool Install(Dialogs& dialogs);
  void Remove();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void(ArrowKey)> onKey_;
};

}  // namespace hylden
