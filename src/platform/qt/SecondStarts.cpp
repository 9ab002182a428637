#include "platform/qt/SecondStarts.h"

#include <utility>

#include "platform/native/SingleInstance.h"

namespace hylden {

SecondStarts::SecondStarts(SingleInstance& instance, std::function<std::string(const std::string& request)> answer) {
  const int descriptor = instance.Listen();
  if (descriptor < 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [&instance, reply = std::move(answer)] { instance.Answer(reply); });
}

}  // namespace hylden
