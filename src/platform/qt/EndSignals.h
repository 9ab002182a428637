#pragma once

#include <QObject>
#include <functional>

class QSocketNotifier;

namespace hylden {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into a call from the event loop, where windows
/// may be closed. One object at a time.
class EndSignals : public QObject {
 public:
  explicit EndSignals(std::function<void()> onEnd);
  ~EndSignals() override;

 private:
  std::function<void()> onEnd_;
  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace hylden
