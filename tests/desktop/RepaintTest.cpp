#include <future>

#include "desktop/FormDriver.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/ThreadedGpib.h"
#include "platform/qt/Later.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/RepaintFilter.h"
#include "support/ScriptedBus.h"
#include "widgets/EscapeWatch.h"
#include "widgets/HaltButton.h"

namespace hylden {
namespace {

/// A window that counts what is done to it.
class CountingWindow : public QWidget {
 public:
  CountingWindow() {
    auto* const layout = new QVBoxLayout(this);
    for (QPushButton* const button : {static_cast<QPushButton*>(&halt), &other}) layout->addWidget(button);
    halt.setText("&Halt");
    other.setText("&Other");
    connect(&halt, &QPushButton::clicked, this, [this] { ++halts; });
    connect(&other, &QPushButton::clicked, this, [this] { ++others; });
    show();
    (void)QTest::qWaitForWindowExposed(this);
    activateWindow();
    Turn();
    paints = 0;
  }
  HaltButton halt;
  QPushButton other;
  int halts = 0, others = 0, paints = 0, closes = 0, keys = 0;

 protected:
  void paintEvent(QPaintEvent*) override { ++paints; }
  void closeEvent(QCloseEvent* event) override {
    ++closes;
    event->ignore();
  }
  void keyPressEvent(QKeyEvent*) override { ++keys; }
};

/// As the window system brings it: to the window, in its turn.
void PostClick(QWidget& window, const QWidget& at) {
  const QPointF local = at.mapTo(&window, at.rect().center()), global = at.mapToGlobal(at.rect().center());
  for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
    QCoreApplication::postEvent(
        window.windowHandle(),
        new QMouseEvent(type, local, local, global, Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier));
}

/// A bus whose reads return when the event loop has had some turns.
class WaitingBus : public ScriptedBus {
 public:
  explicit WaitingBus(std::shared_future<void> released) : released_(std::move(released)) {}
  void Receive(int board, int address, std::span<char> buffer, int termination) override {
    released_.wait();
    ScriptedBus::Receive(board, address, buffer, termination);
  }

 private:
  std::shared_future<void> released_;
};

class TurnsThenRelease : public QtEventLoop {
 public:
  using QtEventLoop::QtEventLoop;
  void Repaint() override {
    QtEventLoop::Repaint();
    if (++turns == 5) release.set_value();
  }
  int turns = 0;
  std::promise<void> release;
};

TEST(Repaint, DuringALongCallWindowsArePaintedAndHaltIsTakenAndNothingElse) {
  CountingWindow window;
  ConsoleClock clock;
  TurnsThenRelease events(clock);
  ThreadedGpib bus(std::make_unique<WaitingBus>(events.release.get_future().share()), events,
                   {.Plain = BusPatience::Time(0), .Turn = BusPatience::Time(100)});
  int timers = 0, laters = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++timers; });
  timer.start(0);
  Later(&window, [&] { ++laters; });
  PostClick(window, window.other);
  QCoreApplication::postEvent(window.windowHandle(), new QCloseEvent);
  window.update();
  PostClick(window, window.halt);
  char buffer[4];
  bus.Receive(0, 18, buffer, gpib::kStopEnd);
  EXPECT_EQ(window.halts, 1);
  EXPECT_GT(window.paints, 0);
  EXPECT_EQ(window.others + window.closes + timers + laters, 0);
  EXPECT_TRUE(window.isVisible());
  Turn();
  EXPECT_EQ(window.others + window.closes, 0) << "meant for what the window showed before";
  EXPECT_GT(timers, 0);
  EXPECT_EQ(laters, 1) << "put off, not lost";
}

TEST(Repaint, HaltIsTakenByItsKeysToo) {
  CountingWindow window;
  int escapes = 0;
  EscapeWatch watch([](const QWidget&) { return true; }, [&] { ++escapes; });
  watch.Start();
  {
    const RepaintFilter filter;
    window.other.setFocus();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_A}) QTest::keyClick(window.windowHandle(), key);
    QTest::keyClick(window.windowHandle(), Qt::Key_O, Qt::AltModifier);
    EXPECT_FALSE(window.other.isDown());
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(escapes, 1);
    QTest::keyClick(window.windowHandle(), Qt::Key_H, Qt::AltModifier);
    EXPECT_TRUE(window.halt.isDown() || window.halts == 1) << "the mnemonic presses it";
    window.close();
  }
  watch.Stop();
  EXPECT_EQ(window.others + window.keys + window.closes, 0);
  window.halt.setFocus();
  window.halts = 0;
  window.halt.setDown(false);
  const RepaintFilter filter;
  QTest::keyClick(window.windowHandle(), Qt::Key_Space);
  EXPECT_EQ(window.halts, 1);
}

}  // namespace
}  // namespace hylden
