#include "platform/qt/EndSignals.h"

#include <utility>

namespace hylden {

EndSignals::EndSignals(std::function<void()> onEnd) : notifier_(signals_.Descriptor(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, end = std::move(onEnd)] {
    if (signals_.Take()) end();
  });
}

}  // namespace hylden
