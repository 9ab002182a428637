#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>

namespace hylden {

class SingleInstance;

/// Turns what another instance asks of this one into a call from the event loop, never inside a bus call.
class SecondStarts {
 public:
  /// @param instance  holds its place
  SecondStarts(SingleInstance& instance, std::function<std::string(const std::string& request)> answer);

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace hylden
