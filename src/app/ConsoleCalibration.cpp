#include "app/ConsoleDisplay.h"
#include "app/ConsoleJobs.h"
#include "app/ConsoleStation.h"
#include "calibration/LevelCalibration.h"
#include "documents/clsCalFile.h"

namespace hylden {

namespace {

bool Validate(ConsoleStation& station) {
  CalSetup& setup = station.TheDocuments().calSetup;
  CalSetupEntries entries;
  const std::vector<std::string> messages = setup.SetupToForm(entries);
  for (const std::string& message : messages) station.Tell(message);
  if (!messages.empty()) return false;
  if (const auto failure = setup.FormToSetup(entries, true)) {
    station.TellFailure(*failure, "calibration setup");
    return false;
  }
  if (const auto failure = CheckStation(setup.Record, station.TheDocuments().equip.Record)) {
    station.Tell(failure->Text);
    return false;
  }
  return true;
}

bool TakeCouplingFactor(ConsoleStation& station) {
  const std::optional<double> factor = station.Options().CouplingFactorDb;
  if (!factor) return true;
  CalSetup& setup = station.TheDocuments().calSetup;
  if (setup.Record.CouplingMethod != static_cast<std::int32_t>(CouplingMethod::UserDefined)) {
    station.Tell("The setup's coupling method is not the user-defined one: it has its own factor.");
    return false;
  }
  setup.UserDefinedFactor = *factor;
  return true;
}

bool Load(ConsoleStation& station) {
  const std::string& file = station.Options().SetupFile;
  if (!station.TheDocuments().calSetup.LoadDef(file)) {
    station.Tell("Error loading calibration setup file: " + file);
    return false;
  }
  return Validate(station) && TakeCouplingFactor(station);
}

bool Connected(ConsoleStation& station) {
  const CalSetupRecord& setup = station.TheDocuments().calSetup.Record;
  return station.Confirm("Make sure proper amp is hooked up,\r\n" + setup.AmpUsed +
                             "\r\nand the meter is at the calibration port, through its cable, of\r\n" +
                             setup.DeviceDescription,
                         question::kMakeSure);
}

std::string TextOf(const std::vector<CalRow>& rows) {
  std::string text;
  for (const CalRow& row : rows) {
    for (const std::string& cell : row) text += cell + ",";
    text += "\n";
  }
  return text;
}

}  // namespace

ExitState RunLevelCalibration(ConsoleStation& station) {
  const std::string& record = station.Options().OutputFile;
  const std::optional<std::string> infoFile = InfoFileBeside(record);
  if (!infoFile) {
    station.Tell("--output: a calibration record ends with .cal");
    return ExitState::Usage;
  }
  if (!station.SetUp({record, *infoFile}) || !Load(station)) return ExitState::Failed;
  station.ConnectMeter(MeterAt::Port);
  ConsoleCalDisplay display(station.Progress());
  LevelCalibration calibration(station.TheShell(), station.TheInstruments(), station.TheDocuments(), display);
  if (!calibration.Prepare()) return ExitState::Failed;
  if (Connected(station)) station.Run([&] { calibration.Run(); }, [&] { station.TheShell().delay.RequestHalt(); });
  const std::vector<CalRow>& rows = calibration.Rows();
  const bool saved = rows.empty() || calibration.RowsSaved();
  if (!saved) station.PrintUnsaved(TextOf(rows));
  return station.End(calibration.Outcome(), saved, rows.size(), calibration.Frequencies().size());
}

}  // namespace hylden
