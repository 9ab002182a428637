#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "app/Station.h"
#include "bench/Bench.h"
#include "desktop/FormDriver.h"
#include "platform/qt/QtEventLoop.h"
#include "support/DriverWrappers.h"
#include "support/FakeDialogs.h"
#include "support/FakePrinter.h"
#include "support/FakeSpeaker.h"
#include "support/TempDir.h"
#include "testrun/qt/frmManual.h"
#include "testrun/qt/frmRunButtons.h"
#include "testrun/qt/frmRunTest.h"

namespace hylden {

/// The demo station on the simulated bench, in virtual time on the windows' own event loop.
class BenchMachine {
 public:
  explicit BenchMachine(Dialogs& theDialogs)
      : shell({theDialogs, clock, events, speaker, printer, driver}, directory.Path()) {
    events.onYield = [this] { LetTheOperatorAct(); };
  }

  void LoadStation() { ASSERT_TRUE(station.LoadEquipment("station.eqp") && station.Apply()); }
  void LoadTest(const std::string& file) {
    ASSERT_TRUE(station.documents.testSetup.LoadDef(file));
    ASSERT_TRUE(station.documents.calInfo.LoadDef(Test().CalInfoFile));
    if (Test().MonitorProbe) bench.Connect(MeterAt::Probe);
  }
  TestDefinition& Test() { return station.documents.testSetup.Definition; }

  /// What the operator does during the run, one after the other: each as soon as its condition holds.
  void When(std::function<bool()> condition, std::function<void()> action) {
    actions_.emplace_back(std::move(condition), std::move(action));
  }
  std::size_t ActionsLeft() const { return actions_.size(); }

  WorkingDirectory atStation{HYLDEN_SOURCE_DIR "/examples/station"};  ///< its files name each other without a directory
  TempDir directory;
  VirtualClock clock;
  Bench bench{clock, LoadBenchFile("bench.txt").Config};
  FailingDriver driver{bench.Driver()};
  QtVirtualEventLoop events{clock};
  FakeSpeaker speaker;
  FakePrinter printer;
  Shell shell;
  Station station{shell, &bench};

 private:
  void LetTheOperatorAct() {
    if (actions_.empty() || !actions_.front().first()) return;
    const auto action = std::move(actions_.front().second);
    actions_.pop_front();
    action();
  }

  std::deque<std::pair<std::function<bool()>, std::function<void()>>> actions_;
};

/// The windows of a test run, opened as the test definition's Start opens them.
class RunForms : public testing::Test {
 protected:
  void SetUp() override { m.LoadStation(); }

  void Open(const std::string& testFile) {
    m.LoadTest(testFile);
    OpenForm();
  }
  void OpenForm() {
    form.reset();
    form = std::make_unique<frmRunTest>(m.station.shell, m.station.instruments, m.station.documents);
    form->OpenFrom(&caller);
    form->Load();
  }
  frmRunButtons& Buttons() { return *form->findChild<frmRunButtons*>(); }
  /// The manual form; null when it is not open.
  frmManual* Manual() { return form->findChild<frmManual*>(); }
  std::string Text(const char* name) { return TextOf(*form, name); }
  bool Enabled(const char* name) { return Find<QWidget>(*form, name).isEnabled(); }
  bool Shown(const char* name) { return Find<QWidget>(*form, name).isVisible(); }
  std::size_t Asked(const std::string& title) {
    std::size_t count = 0;
    for (const Message& message : dialogs.messages) count += message.title == title ? 1 : 0;
    return count;
  }
  /// Holds while the run is at this step.
  std::function<bool()> AtStep(int step) {
    return [this, text = "Step# " + std::to_string(step)] { return Text("lblStep") == text; };
  }
  /// As soon as this step shows a value there.
  std::function<bool()> AtValue(int step, const char* label) {
    return [this, at = AtStep(step), label] { return at() && Text(label) != "--"; };
  }
  const std::vector<RunEntry>& Rows() const { return form->Engine().Data().Entries(); }
  /// A row as the table shows it, counted from 1.
  RunRow Row(std::size_t row) const { return CellsOf(Rows().at(row - 1)); }

  FakeDialogs dialogs;
  BenchMachine m{dialogs};
  QWidget caller;
  std::unique_ptr<frmRunTest> form;
};

}  // namespace hylden
