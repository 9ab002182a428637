#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "app/Desktop.h"
#include "desktop/FormDriver.h"
#include "platform/qt/QtEventLoop.h"
#include "shell/qt/TopMenu.h"
#include "support/DemoStation.h"

namespace hylden {

/// The demo station with an operator at its windows, on their own event loop. Its calibration setup is for 1, 2 and 3
/// MHz.
class DemoWindows : public DemoStation<QtVirtualEventLoop> {
 public:
  /// @param others  dialogs in place of the fake ones
  explicit DemoWindows(Dialogs* others = nullptr) : DemoStation("station.eqp", {}, others, true) {
    CalSetupRecord& setup = documents.calSetup.Record;
    setup.StartFreq = 1, setup.StopFreq = 3, setup.StepType = StepType::Linear;
    documents.calSetup.Saved = setup;
    events.onYield = [this] { LetTheOperatorAct(); };
  }
  ~DemoWindows() {
    desktop.reset();
    Turn();
  }

  /// The program's windows as the program makes them; its command line loads the station again.
  void Start(const std::string& more = {}, std::function<void()> onEnding = {}) {
    desktop.reset();
    desktop = std::make_unique<Desktop>(station, DesktopOptions{std::move(onEnding), {}});
    QObject::connect(desktop.get(), &Desktop::Ended, [this] { ++ended; });
    EXPECT_TRUE(desktop->Start("\"/e:station.eqp\"" + more));
  }
  /// The form that has been opened.
  template <class Form>
  Form& Opened() {
    QCoreApplication::processEvents();
    Form* const form = OpenWindow<Form>();
    if (!form) throw std::runtime_error("no window opened");
    return *form;
  }
  MeterAt Cabled() const { return bench.State().Cabling.Meter; }
  std::size_t Asked(const std::string& title) const {
    return static_cast<std::size_t>(std::count_if(dialogs.messages.begin(), dialogs.messages.end(),
                                                  [&](const Message& message) { return message.title == title; }));
  }

  /// What the operator does during a run, one after the other: each as soon as its condition holds.
  void When(std::function<bool()> condition, std::function<void()> action) {
    actions_.emplace_back(std::move(condition), std::move(action));
  }
  void WhenRfIsOn(std::function<void()> action) {
    When([this] { return RfIsOn(); }, std::move(action));
  }
  std::size_t ActionsLeft() const { return actions_.size(); }

  std::unique_ptr<Desktop> desktop;
  int ended = 0;

 private:
  void LetTheOperatorAct() {
    if (actions_.empty() || !actions_.front().first()) return;
    const auto action = std::move(actions_.front().second);
    actions_.pop_front();
    action();
  }

  std::deque<std::pair<std::function<bool()>, std::function<void()>>> actions_;
};

class DemoWindowsTest : public testing::Test {
 protected:
  DemoWindows m;
  FakeDialogs& dialogs = m.dialogs;
};

}  // namespace hylden
