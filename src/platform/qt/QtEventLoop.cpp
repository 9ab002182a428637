#include "platform/qt/QtEventLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include "platform/qt/RepaintFilter.h"

namespace hylden {

QtEventLoop::QtEventLoop(const Clock& clock) : clock_(clock) {
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  wake_.setInterval(1);
}

void QtEventLoop::Yield(std::int64_t deadlineMs) {
  QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
  if (dispatcher->processEvents(QEventLoop::AllEvents) || clock_.TickMs() >= deadlineMs) return;
  wake_.start();
  dispatcher->processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  wake_.stop();
}

void QtEventLoop::Repaint() {
  constexpr int kMostTurns = 4;  // one event brings on the next: a window that is shown, its painting
  const RepaintFilter filter;
  QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
  for (int turn = 0; turn < kMostTurns; ++turn)
    if (!dispatcher->processEvents(QEventLoop::AllEvents)) return;
}

void QtVirtualEventLoop::Yield(std::int64_t deadlineMs) {
  QCoreApplication::processEvents();
  VirtualEventLoop::Yield(deadlineMs);
}

}  // namespace hylden
