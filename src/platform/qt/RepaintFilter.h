#pragma once

#include <QObject>

class QWidget;

namespace hylden {

/// The property of a button that is pressed also while a bus call is under way: Halt.
inline constexpr char kHaltsProperty[] = "halts";

/// While it lives, only what shows windows gets to its receiver, and a press of Halt: by its button, its mnemonic or
/// Escape. What the operator does otherwise is dropped, since it was meant for what the windows showed before; timers
/// and sockets, which ask again, have to wait.
class RepaintFilter : public QObject {
 public:
  RepaintFilter();
  ~RepaintFilter() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool quits_ = false;  ///< the application was told to quit meanwhile
};

}  // namespace hylden
