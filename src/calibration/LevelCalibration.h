#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calibration/LevelRules.h"
#include "documents/CalSetupRecord.h"
#include "documents/SaveCal.h"
#include "measure/Curve.h"
#include "measure/InterpClass.h"
#include "run/ElapsedTime.h"
#include "run/FormerRun.h"
#include "run/ForwardSensor.h"
#include "run/InstrumentsUp.h"
#include "run/RunGuard.h"
#include "run/RunJournal.h"
#include "run/TimeKeeper.h"
#include "run/UnsavedRows.h"

namespace hylden {

class RunDisplay;
class PlanRange;
class Shell;
struct Documents;
struct Instruments;

/// Finds, frequency by frequency, the generator level that gives the wanted level at the coupling device's calibration
/// port, and keeps it with the powers seen then. However a run ends, RF is off, the instruments are offline, the points
/// recorded so far are there, and the operator has been asked once whether to save them.
class LevelCalibration {
 public:
  LevelCalibration(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display);
  LevelCalibration(const LevelCalibration&) = delete;
  LevelCalibration& operator=(const LevelCalibration&) = delete;

  /// Plans the frequencies and loads the factor tables for the calibration setup as it is now.
  /// @return false after a message: no run can be started
  bool Prepare();
  /// The run to come continues one that ended early: its rows are shown, stand before those to come, and the first
  /// frequency without one begins at the setup's initial level. To be called when Prepare came to true.
  /// @return why it can't be continued; the next run begins afresh then
  Done Continue(FormerRun<CalRows> former);
  /// The step at which the next run can continue the one whose rows these are: some frequencies have none yet, and
  /// nothing that it is made of has changed.
  std::optional<std::size_t> Unfinished();
  /// Asks whether to continue a run that ended early, then runs the calibration; returns when it ended, failed or was
  /// halted. Does nothing before Prepare came to true, nor when the operator wants to keep rows that are not saved.
  void Run();
  /// Asks for a file and saves the complete rows as a calibration record. One that does not hold the whole plan is
  /// told, and names the range that it holds. @return false when cancelled or failed
  bool Save() { return unsaved_.Save(); }
  /// Rows that would make a record, two complete ones at least, and are in no file.
  UnsavedRows& Unsaved() { return unsaved_; }
  const UnsavedRows& Unsaved() const { return unsaved_; }

  bool IsRunning() const { return guard_.IsRunning(); }
  RunOutcome Outcome() const { return guard_.Outcome(); }
  /// The window's title.
  std::string Title() const { return "CDI Calibration: " + setup_.SetupDescription; }
  const CalSetupRecord& Setup() const { return setup_; }
  const std::vector<double>& Frequencies() const { return plan_; }
  /// The wanted levels, dBuV, by rising frequency. To be called between two runs.
  std::vector<CurvePoint> Targets();
  /// One row for each frequency recorded, in order.
  const CalRows& Rows() const { return rows_; }

 private:
  /// What is known at one frequency.
  struct Point {
    double Freq = 0;
    double Target = 0;         ///< dBuV
    double CableLoss = 0;      ///< dB
    double ForwardFactor = 0;  ///< dB, so the next
    double ReverseFactor = 0;
    std::optional<double> ForwardDbm = {};
    double ForwardWatts = 0;
    double Level = 0;  ///< at the coupling device, dBuV
  };

  bool Halted() const;
  bool WriteRecord();
  JournalHead Head();
  RunParts Parts();
  bool MayBegin();
  void BeginAfresh();
  void GoOn();
  void ShowRows();
  void ForgetRows();
  bool PlanRun();
  void ShowPlan();
  bool LoadTables();
  void LeaveOutLast(const PlanRange& range);
  bool CheckTestLevels();
  /// Tells why no run can be started, and leaves it on the display; false.
  bool NotReady(const Failure& failure);
  void RunPlan();
  bool BringUp();
  void Sweep();
  void ShowTimes(std::size_t done, std::size_t former);
  void ExpectTimes(std::size_t first);
  void End();

  // One frequency; each part is false when the run is to end.
  bool CalibratePoint(double frequencyMHz);
  bool FindTarget();
  bool TuneMeter();
  bool TuneGenerator();
  bool TunePowerMeter();
  bool FindLevel();
  bool SetLevelAndDwell();
  bool ReadLevel();
  bool ReadForwardPower();
  bool ReadMeter();
  bool ChangeLevel(double stepDb);
  bool Record();
  bool ReadReversePower(double excessDb, CalRow& row);

  Shell& shell_;
  Instruments& instruments_;
  Documents& documents_;
  RunDisplay& display_;
  RunGuard guard_;
  InstrumentsUp up_;
  ForwardSensor sensor_;
  UnsavedRows unsaved_;
  ElapsedTime elapsed_;
  InterpClass cableLoss_, testLevels_, forwardPort_, reversePort_;

  CalSetupRecord setup_;  ///< as it was when the run was prepared, with the range planned
  double couplingFactor_ = 0;
  std::vector<double> plan_;
  CalRows rows_;
  Point point_;
  float sigGenLevel_ = 0;  ///< dBm
  bool ready_ = false;
  bool continues_ = false;  ///< the next run continues the one whose rows these are
  bool started_ = false;    ///< the instruments came up
  TimeKeeper times_;
  int tries_ = 0;  ///< at the frequency at work
  RunJournal journal_;
};

}  // namespace hylden
