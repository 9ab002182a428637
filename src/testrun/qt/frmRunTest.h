#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "run/qt/RowTable.h"
#include "run/qt/RunWindow.h"
#include "testrun/ManualControls.h"
#include "testrun/RunCurves.h"
#include "testrun/RunEngine.h"
#include "testrun/RunReport.h"
#include "testrun/RunUnits.h"

namespace hylden {

class frmManual;
class frmRunButtons;
namespace Ui {
class frmRunTest;
}

/// The running test: its figures, its data and its menus, with the run buttons and the manual form as windows of their
/// own.
class frmRunTest : public RunWindow, private ManualControls {
  Q_OBJECT

 public:
  frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent = nullptr);
  ~frmRunTest() override;

  /// Prepares the run: plan, calibration record, factor tables. What fails has been shown; without a step to run the
  /// form unloads.
  void Load();
  /// The prepared run continues one that ended early, whose rows are shown; what keeps it from that is told.
  void Continue(FormerRun<RunData> former);
  /// The bench drives the program: every window of the run says so.
  void SetSimulated();
  void PrintReport(RunReportKind kind);

  const RunEngine& Engine() const { return engine_; }
  QString HelpTopic() const override;

 signals:
  /// Show in the preview what PrintReport would print.
  void PrintPreviewRequested(RunReportKind kind);

 protected:
  bool QueryUnload() override;
  void changeEvent(QEvent* event) override;

 private:
  struct Marked {
    Readout readout;
    QLabel* label;
    bool red = false;
  };

  void StartAfresh() override;
  void SetRunning(bool running) override;
  void Halt() override;
  bool IsOurs(const QWidget& window) const override;

  // The display.
  void Phase(RunPhase phase) override;
  void Status(const std::string& text) override;
  void Plan(const RunPlan& plan) override;
  QString StepText(int step) const override { return QStringLiteral("Step# %1").arg(step); }
  void Show(Readout readout, std::optional<double> value) override;
  void Mark(Readout readout, bool held) override;
  void RowChanged(int row) override;

  // Manual mode.
  void OpenManual(const ManualStart& start) override;
  void CloseManual() override;
  void ManualStep(int step, int row, double frequencyMHz) override;
  void ManualRf(bool on) override;
  void ManualMod(bool on) override;

  // What the run buttons and the manual form raise.
  void buttonform_RunClick();
  void buttonform_HaltClick() { Halt(); }
  void buttonform_ManualClick() { engine_.RequestManual(); }
  void buttonform_exitclick() { close(); }
  void manform_manThresholdClick(double frequencyMHz, float offsetDb) {
    engine_.Manual().manThresholdClick(frequencyMHz, offsetDb);
  }
  void manform_manRfOn(bool on) { engine_.Manual().manRfOn(on); }
  void manform_manModOn(bool on) { engine_.Manual().manModOn(on); }
  void manform_manExitClick() { engine_.Manual().manExitClick(); }

  Controls TheControls();
  void ConnectFileMenu();
  void ConnectUnits();
  void SetUpCurves();
  RunCurveContext CurveContext() const;
  void ShowLevels();
  void ShowMarks();
  /// Whether the row, counted from 0, is a threshold.
  bool IsThreshold(std::size_t row) const;

  Documents& documents_;
  std::unique_ptr<Ui::frmRunTest> ui_;
  RunEngine engine_;
  RowTable table_;
  std::unique_ptr<frmRunButtons> ButtonForm;
  std::unique_ptr<frmManual> ManForm;
  std::string manualPlace_;  ///< where it was left, as the settings keep it

  RunUnitChoice units_;
  std::vector<RunAim> aims_;
  std::unique_ptr<RunCurves> curves_;  ///< those that are shown
  std::optional<double> testLevelDbuv_, inducedDbua_, powerDbm_;
  double inducedLimitDbua_ = 0;
  std::vector<Marked> marks_;
  double estimatedMinutes_ = 0;  ///< of the whole run
  bool simulated_ = false;
};

}  // namespace hylden
