#pragma once

#include "desktop/DemoWindows.h"
#include "testrun/qt/frmManual.h"
#include "testrun/qt/frmRunButtons.h"
#include "testrun/qt/frmRunTest.h"

namespace hylden {

/// The windows of a test run, opened as the test definition's Start opens them.
class RunForms : public DemoWindowsTest {
 protected:
  void Open(const std::string& testFile = "substitution-am.tst") {
    m.LoadTest(testFile);
    OpenForm();
  }
  void OpenForm() {
    form.reset();
    form = std::make_unique<frmRunTest>(m.shell, m.instruments, m.documents);
    form->OpenFrom(&caller);
    form->Load();
  }
  frmRunButtons& Buttons() { return *form->findChild<frmRunButtons*>(); }
  /// The manual form; null when it is not open.
  frmManual* Manual() { return form->findChild<frmManual*>(); }
  std::string Text(const char* name) { return TextOf(*form, name); }
  bool Enabled(const char* name) { return IsEnabled(*form, name); }
  bool Shown(const char* name) { return Find<QWidget>(*form, name).isVisible(); }
  void Run() {
    Press(*form, "cmdRun");
    EXPECT_EQ(m.ActionsLeft(), 0u);
    EXPECT_FALSE(m.RfIsOn());
  }
  /// Holds while the run is at this step.
  std::function<bool()> AtStep(int step) {
    return [this, text = "Step# " + std::to_string(step)] { return Text("lblStep") == text; };
  }
  void HaltAtStep(int step) {
    m.When(AtStep(step), [this] { Press(*form, "cmdHalt"); });
  }
  /// Opens the manual form at a step, and does something with it.
  void InManualMode(int step, std::function<void()> action) {
    m.When(AtStep(step), [this] { Press(*form, "cmdManual"); });
    m.When([this] { return Manual() != nullptr; }, std::move(action));
  }
  const std::vector<RunEntry>& Rows() const { return form->Engine().Data().Entries(); }
  /// A row as the table shows it, counted from 1.
  RunRow Row(std::size_t row) const { return CellsOf(Rows().at(row - 1)); }

  QWidget caller;
  std::unique_ptr<frmRunTest> form;
};

}  // namespace hylden
