#include <utility>

#include "app/ConsoleDisplay.h"
#include "app/ConsoleJobs.h"
#include "app/ConsoleResume.h"
#include "app/ConsoleStation.h"
#include "calibration/LevelCalibration.h"
#include "documents/SaveCal.h"
#include "run/RunQuestions.h"

namespace hylden {

namespace {

/// Takes the user-defined coupling factor that was given over the setup's own. @return false after a message
bool TakeFactor(ConsoleStation& station, FormEntries& entries) {
  const CalSetupRecord& setup = station.TheDocuments().calSetup.Record;
  const std::string& factor = station.Options().CouplingFactor;
  if (factor.empty() && setup.HasOwnFactor() && setup.UserDefinedFactor == 0) {
    station.Tell(
        "The setup's coupling method is the user-defined one, without a factor: give it with --coupling-factor.");
    return false;
  }
  if (!factor.empty() && !setup.HasOwnFactor()) {
    station.Tell("The setup's coupling method is not the user-defined one: it has its own factor.");
    return false;
  }
  if (!factor.empty()) entries["txtUserDefCF"] = factor;
  return true;
}

/// What the form would refuse is refused.
bool Validate(ConsoleStation& station) {
  CalSetup& setup = station.TheDocuments().calSetup;
  CalSetupShown shown = EntriesOf(setup.Record);
  for (const std::string& message : shown.Messages) station.Tell(message);
  if (!shown.Messages.empty() || !TakeFactor(station, shown.Entries)) return false;
  if (const auto failure = setup.FormToSetup(shown.Entries, true)) {
    if (failure->Control == "txtUserDefCF" && !station.Options().CouplingFactor.empty())
      station.Tell("--coupling-factor: the value is not a number, or outside its range");
    else
      station.TellBadEntry(*failure, "calibration setup");
    return false;
  }
  if (const auto failure = CheckStation(setup.Record, station.TheDocuments().equip)) {
    station.Tell(failure->Text);
    return false;
  }
  return true;
}

bool Load(ConsoleStation& station) {
  const std::string& file = station.Options().SetupFile;
  if (!station.TheShell().Ok(station.TheDocuments().calSetup.LoadDef(file))) {
    station.Tell("Error loading calibration setup file: " + file);
    return false;
  }
  station.TheDocuments().calSetup.FileName = file;
  return Validate(station);
}

/// Has the calibration continue the one that "--resume" names, if it names one. @return false after a message
bool ContinueFormer(ConsoleStation& station, LevelCalibration& calibration) {
  if (station.Options().Resume.empty()) return true;
  auto resumed = TakeJournal(station, JournalKind::LevelCalibration);
  if (!resumed) return false;
  return station.TheShell().Ok(calibration.Continue(FormerCalibration(std::move(*resumed))));
}

bool Connected(ConsoleStation& station) {
  const CalSetupRecord& setup = station.TheDocuments().calSetup.Record;
  return station.Confirm("Make sure proper amp is hooked up,\r\n" + setup.AmpUsed +
                             "\r\nand the meter, with its cable, at the calibration port of\r\n" +
                             setup.DeviceDescription,
                         question::kMakeSure);
}

/// Prints the rows that are in no record. @return whether there are none
bool SavedOrPrinted(ConsoleStation& station, const LevelCalibration& calibration) {
  if (calibration.Unsaved().AreKept()) return true;  // in the journal that it was to continue
  CalRows unsaved;
  for (const CalRow& row : calibration.Rows())
    if (!calibration.Unsaved().AreSaved() || !row.Complete) unsaved.push_back(row);
  if (!unsaved.empty()) station.PrintUnsaved(CalDataText(unsaved));
  return unsaved.empty();
}

}  // namespace

ExitState RunLevelCalibration(ConsoleStation& station) {
  if (!InfoFileBeside(station.Options().OutputFile)) {
    station.Tell("--output: a calibration record ends with .cal");
    return ExitState::Usage;
  }
  if (!station.SetUp() || !Load(station)) return ExitState::Failed;
  station.ConnectMeter(MeterAt::Port);
  ConsoleDisplay display(station.Progress());
  LevelCalibration calibration(station.TheShell(), station.TheInstruments(), station.TheDocuments(), display);
  const std::vector<double>& plan = calibration.Frequencies();
  const bool readsPower = station.TheDocuments().calSetup.Record.RecordsForward();
  if (!calibration.Prepare() || !ContinueFormer(station, calibration) || (readsPower && !station.MayMoveSensor(plan)) ||
      !station.MayMakeOutput(plan.size()))
    return ExitState::Failed;
  if (Connected(station)) station.Run([&] { calibration.Run(); });
  const bool saved = SavedOrPrinted(station, calibration);
  return station.End(calibration.Outcome(), saved, calibration.Rows().size(), calibration.Frequencies().size());
}

}  // namespace hylden
