#pragma once

#include <QTimer>
#include <functional>
#include <utility>

namespace hylden {

/// Does something in a later turn of the event loop, but never while a bus call is under way (RepaintFilter); not at
/// all when the context goes first.
inline void Later(QObject* context, std::function<void()> action) {
  auto* const timer = new QTimer(context);
  timer->setSingleShot(true);
  QObject::connect(timer, &QTimer::timeout, context, [timer, action = std::move(action)] {
    timer->deleteLater();
    action();
  });
  timer->start(0);
}

}  // namespace hylden
