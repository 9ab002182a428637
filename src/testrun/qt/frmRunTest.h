#pragma once

#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "run/RunDisplay.h"
#include "run/qt/RowTable.h"
#include "shell/qt/WorkingForm.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"
#include "testrun/RunReport.h"
#include "testrun/RunUnits.h"
#include "widgets/EscapeWatch.h"

class QAction;
class QLabel;
class QMenu;

namespace hylden {

class frmManual;
class frmRunButtons;
class TableFollower;
namespace Ui {
class frmRunTest;
}

/// The running test: its figures, its data and its menus, with the run buttons and the manual form as windows of their
/// own. A run goes on inside the press of Run; closing a window during it halts the run, lets it end in order and then
/// closes.
class frmRunTest : public WorkingForm, private RunDisplay, private ManualControls {
  Q_OBJECT

 public:
  frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent = nullptr);
  ~frmRunTest() override;

  /// Prepares the run: plan, calibration record, factor tables. What fails has been shown; without a step to run the
  /// form unloads.
  void Load();
  /// The bench drives the program: every window of the run says so.
  void SetSimulated();
  /// Halts the run as its button does; nothing when there is none.
  void PressHalt();
  void PrintReport(RunReportKind kind);
  bool AsksToSave() const override { return engine_.Unsaved().IsAsking(); }
  bool SaveMissed() const override { return engine_.Unsaved().AreMissed(); }

  const RunEngine& Engine() const { return engine_; }
  QString HelpTopic() const override;

 signals:
  /// Show in the preview what PrintReport would print.
  void PrintPreviewRequested(RunReportKind kind);

 protected:
  bool QueryUnload() override;
  void Hurry() override;
  void changeEvent(QEvent* event) override;

 private:
  struct UnitEntry {
    QAction* action;
    RunUnit unit;
  };
  struct Marked {
    Readout readout;
    QLabel* label;
    bool red = false;
  };

  // The display.
  void Countdown(double seconds) override;
  void Phase(RunPhase phase) override;
  void Status(const std::string& text) override;
  void Plan(const RunPlan& plan) override;
  void Step(int step) override;
  void StepDone(int step) override;
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
  void buttonform_HaltClick();
  void buttonform_ManualClick();
  void buttonform_exitclick();
  void manform_manThresholdClick(double frequencyMHz, float offsetDb);
  void manform_manRfOn(bool on);
  void manform_manModOn(bool on);
  void manform_manExitClick();

  void ConnectFileMenu();
  void ConnectUnits();
  void OfferUnits(QMenu* menu, const std::vector<UnitEntry>& entries, RunUnit& choice, void (frmRunTest::*refresh)());
  void OpenOnRightClick(QMenu* menu, const std::vector<QWidget*>& labels);
  void SetUpStatusBar();

  void SetRunMode();
  void SetHaltMode();
  void SetHalting();
  void EnableFileMenu(bool enabled);
  void StartAfresh();
  void ShowTestLevelNow();
  void ShowInducedLevelNow();
  void ShowPowerNow();
  void ShowRf();
  void ShowMarks();
  void ClearCountdown();
  void AskForHelp() { emit HelpRequested(HelpTopic()); }
  /// Whether the row, counted from 0, is a threshold.
  bool IsThreshold(std::size_t row) const;
  bool IsOurs(const QWidget& window) const;

  Instruments& instruments_;
  Documents& documents_;
  std::unique_ptr<Ui::frmRunTest> ui_;
  RunEngine engine_;
  RowTable table_;
  std::unique_ptr<frmRunButtons> ButtonForm;
  std::unique_ptr<frmManual> ManForm;
  std::string manualPlace_;  ///< where it was left, as the settings keep it
  EscapeWatch escape_;
  TableFollower* follower_ = nullptr;
  QLabel* statusPanel_ = nullptr;
  QLabel* frequencyPanel_ = nullptr;
  QLabel* dwellPanel_ = nullptr;

  RunUnitChoice units_;
  std::optional<double> testLevelDbuv_;
  std::optional<double> inducedDbua_;
  double inducedLimitDbua_ = 0;
  std::optional<double> powerDbm_;
  std::vector<Marked> marks_;
  QTimer rfWatch_{this};         ///< RF can go off under a message box
  double estimatedMinutes_ = 0;  ///< of the whole run
  bool simulated_ = false;
  bool inRun_ = false;  ///< a press of Run has not returned yet
};

}  // namespace hylden
