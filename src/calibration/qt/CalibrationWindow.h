#pragma once

#include <QTimer>
#include <functional>
#include <string_view>
#include <vector>

#include "run/RunDisplay.h"
#include "shell/qt/WorkingForm.h"
#include "widgets/EscapeWatch.h"

class QAbstractButton;
class QLabel;
class QMenu;
class QProgressBar;
class QTableView;

namespace hylden {

class RowTable;
class RfLamp;
class SigGen;
class TableFollower;

/// What the windows of a running calibration have in common: figures, progress, table, status bar, and a run inside
/// the press of a button. Escape halts a run; closing the window during it halts it, lets it end in order, then closes.
class CalibrationWindow : public WorkingForm, protected RunDisplay {
  Q_OBJECT

 public:
  CalibrationWindow(Shell& shell, SigGen& sigGen, QWidget* parent);

  /// Halts the run as its button does; nothing when there is none.
  void PressHalt();

 protected:
  struct Controls {
    QLabel *Freq, *SigGen, *MeterLevel, *Countdown;
    QLabel *Step, *Steps, *Start, *Stop, *Dwell, *Elapsed, *Remaining, *State;
    RfLamp* Rf;
    QProgressBar* Progress;
    QTableView* Table;
    QMenu* File;
    QAbstractButton *Halt, *Exit;
  };
  /// How the figures are written.
  struct Patterns {
    std::string_view Freq, SigGen, MeterLevel;
  };

  /// To be called once the controls are there.
  void SetUp(const Controls& controls, const Patterns& patterns, RowTable& table);
  /// Has the button run a calibration.
  void OnRun(QAbstractButton* button, std::function<void()> run);
  /// Forgets the figures of the run before.
  virtual void StartAfresh();
  /// Asks about points that would be lost. @return false when the window has to stay
  virtual bool MayLeavePoints() = 0;

  bool QueryUnload() override { return MayLeavePoints(); }
  void Hurry() override;

  // The display.
  void Phase(RunPhase phase) override;
  void Status(const std::string& text) override;
  void Plan(const RunPlan& plan) override;
  void Countdown(double seconds) override;
  void StepDone(int step) override;
  void Show(Readout readout, std::optional<double> value) override;
  void RowChanged(int row) override;

  /// Running: only Halt can be pressed. Otherwise a run can be started, and what was measured saved.
  virtual void SetRunning(bool running);

 private:
  void SetUpStatusBar();
  void RunFrom(const std::function<void()>& run);
  void ShowRf();
  void ShowBusy(bool busy);
  void ClearCountdown();

  SigGen& sigGen_;
  Controls controls_ = {};
  Patterns patterns_ = {};
  RowTable* table_ = nullptr;
  TableFollower* follower_ = nullptr;
  QLabel* statusPanel_ = nullptr;
  QLabel* stepPanel_ = nullptr;
  QLabel* dwellPanel_ = nullptr;
  EscapeWatch escape_;
  QTimer rfWatch_{this};  ///< RF can go off under a message box
  bool busy_ = false;     ///< the wait cursor is shown
  bool inRun_ = false;    ///< the press that started a run has not returned yet
};

}  // namespace hylden
