#include <algorithm>

#include "app/ConsoleDisplay.h"
#include "app/ConsoleJobs.h"
#include "app/ConsoleStation.h"
#include "calibration/CableCalibration.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

/// The option that fills a box of the setup.
std::string OptionOf(const std::string& control) {
  const struct {
    const char* control;
    const char* option;
  } options[] = {{"txtStartFreq", "--start"},  {"txtStopFreq", "--stop"}, {"txtLinearStep", "--linear-step"},
                 {"txtLogStep", "--log-step"}, {"txtDwell", "--dwell"},   {"txtLev", "--level"}};
  for (const auto& o : options)
    if (control == o.control) return o.option;
  return control;
}

/// The two passes, each asked for.
class CableLoss {
 public:
  CableLoss(ConsoleStation& station, const CableSetup& setup)
      : station_(station), run_(station.TheShell(), station.TheInstruments()), display_(station.Progress()) {
    run_.Setup = setup;
  }

  /// @return false after a message
  bool Plan();
  ExitState Run();

 private:
  bool Pass(bool inserted);
  bool SavedOrPrinted();
  std::size_t Completed() const;

  ConsoleStation& station_;
  RunCablCal run_;
  ConsoleDisplay display_;
  RunOutcome outcome_ = RunOutcome::NotRun;
};

bool CableLoss::Plan() {
  const auto failure = CheckCableStation(station_.TheDocuments().equip);
  if (failure) station_.Tell(failure->Text);
  return !failure && run_.BuildPlan() && station_.MayMakeOutput(run_.Points().size());
}

ExitState CableLoss::Run() {
  if (Pass(false)) Pass(true);
  const bool saved = SavedOrPrinted();
  return station_.End(outcome_, saved, Completed(), run_.Points().size());
}

bool CableLoss::Pass(bool inserted) {
  const bool confirmed = station_.Confirm(inserted ? "Insert pass: put the cable between the generator and the meter."
                                                   : "Direct pass: connect the generator straight to the meter.",
                                          question::kPass);
  if (!confirmed) {
    if (inserted) outcome_ = RunOutcome::EndedEarly;
    return false;
  }
  station_.ConnectMeter(inserted ? MeterAt::Cable : MeterAt::Generator);
  outcome_ = inserted ? RunOutcome::EndedEarly : RunOutcome::NotRun;
  station_.Run([&] {
    inserted ? run_.InsertPass(display_) : run_.DirectPass(display_);
    outcome_ = run_.Outcome();
  });
  return outcome_ == RunOutcome::Finished;
}

/// Prints what is in no file: a point without its insert reading has no loss. @return whether all is in the file
bool CableLoss::SavedOrPrinted() {
  const bool saved = Completed() > 0 && run_.SaveFile();
  std::string text;
  for (const CablePoint& point : run_.Points()) {
    if (!point.HasDirect() || (saved && point.HasBoth())) continue;
    text += Format(point.Freq, "####0.000###") + " MHz  direct " + Format(point.Direct, "##0.0#");
    if (point.HasBoth()) text += "  insert " + Format(point.Insert, "##0.0#");
    text += " dBuV\n";
  }
  if (!text.empty()) station_.PrintUnsaved(text);
  return text.empty();
}

std::size_t CableLoss::Completed() const {
  const auto& points = run_.Points();
  return static_cast<std::size_t>(
      std::count_if(points.begin(), points.end(), [](const auto& p) { return p.HasBoth(); }));
}

}  // namespace

ExitState RunCableLoss(ConsoleStation& station) {
  const RunOptions& options = station.Options();
  CableSetup setup;
  if (const auto failure = ValidateCableSetup(options.Cable, setup)) {
    const bool isNumber = failure->Reason == EntryFailure::Kind::OutOfRange;
    station.Tell(OptionOf(failure->Control) +
                 (isNumber ? ": the value is outside its range" : ": the value is not a number") + failure->Allowed());
    return ExitState::Usage;
  }
  if (!options.UseBench && !station.HasTerminal()) {
    station.Tell("The passes need somebody at a terminal, who moves the cable between them.");
    return ExitState::Failed;
  }
  if (!station.SetUp()) return ExitState::Failed;
  CableLoss job(station, setup);
  return job.Plan() ? job.Run() : ExitState::Failed;
}

}  // namespace hylden
