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

class CalibrationTable;
class RfLamp;
class Shell;
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
  /// A question about saving its points stands on the screen.
  virtual bool AsksToSave() const { return false; }
  /// Points that were to be saved are not: the window does not close by itself.
  virtual bool SaveMissed() const { return false; }

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
  void SetUp(const Controls& controls, const Patterns& patterns, CalibrationTable& table);
  /// Runs the calibration; an exception that ends the program goes on to the application.
  void RunFrom(const std::function<void()>& run);
  /// Runs a command; what it could not foresee is reported. The window closes behind its boxes, not under them.
  void Guard(const char* name, const std::function<void()>& command);
  /// Forgets the figures of the run before.
  virtual void StartAfresh();
  bool InRun() const { return inRun_; }
  /// Asks about points that would be lost. @return false when the window has to stay
  virtual bool MayLeavePoints() = 0;

  bool QueryUnload() override;

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

  Shell& shell_;

 private:
  void SetUpStatusBar();
  void CloseIfAsked();
  void ShowRf();
  void ShowBusy(bool busy);
  void ClearCountdown();

  SigGen& sigGen_;
  Controls controls_ = {};
  Patterns patterns_ = {};
  CalibrationTable* table_ = nullptr;
  TableFollower* follower_ = nullptr;
  QLabel* statusPanel_ = nullptr;
  QLabel* stepPanel_ = nullptr;
  QLabel* dwellPanel_ = nullptr;
  EscapeWatch escape_;
  QTimer rfWatch_{this};  ///< RF can go off under a message box
  bool busy_ = false;     ///< the wait cursor is shown
  bool inRun_ = false;    ///< the press that started a run has not returned yet
  int commands_ = 0;      ///< that have not returned yet
  bool closePending_ = false;
};

}  // namespace hylden
