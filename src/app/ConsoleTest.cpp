#include <utility>

#include "app/ConsoleDisplay.h"
#include "app/ConsoleJobs.h"
#include "app/ConsoleResume.h"
#include "app/ConsoleStation.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

bool Validate(ConsoleStation& station) {
  Documents& documents = station.TheDocuments();
  TestDefinition& test = documents.testSetup.Definition;
  FormEntries entries = EntriesShowing(test);
  const TestValidation validation = ValidateTestDefinition(entries, documents.calInfo.Record.FreqRange, test);
  for (const std::string& notice : validation.Notices) station.Tell(notice);
  if (validation.Failure) {
    station.TellBadEntry(*validation.Failure, "test definition");
    return false;
  }
  if (const auto failure = CheckStart(test, documents.equip)) {
    station.Tell(failure->Text);
    return false;
  }
  return true;
}

bool Load(ConsoleStation& station) {
  Documents& documents = station.TheDocuments();
  const std::string& file = station.Options().TestFile;
  if (!station.TheShell().Ok(documents.testSetup.LoadDef(file))) {
    station.Tell("Error loading test setup file: " + file);
    return false;
  }
  const std::string infoFile = documents.testSetup.Definition.CalInfoFile;
  if (!station.TheShell().Ok(documents.calInfo.LoadDef(infoFile))) {
    station.Tell("Error loading calinfo file: " + infoFile);
    return false;
  }
  return Validate(station);
}

/// No sensor is read, or somebody moves it where it has to be moved. @return false after a message
bool MayReadPower(ConsoleStation& station, const RunEngine& engine) {
  std::vector<double> frequencies;
  for (const PlanStep& step : engine.Steps()) frequencies.push_back(step.Freq);
  return !station.TheDocuments().testSetup.Definition.LevelsByPower() || station.MayMoveSensor(frequencies);
}

/// Has the run continue the one that "--resume" names, if it names one. @return false after a message
bool ContinueFormer(ConsoleStation& station, RunEngine& engine) {
  if (station.Options().Resume.empty()) return true;
  auto resumed = TakeJournal(station, JournalKind::Test);
  if (!resumed) return false;
  return station.TheShell().Ok(engine.Continue(FormerTest(std::move(*resumed))));
}

/// Prints the run data unless they are in the output file. @return whether they are
bool SavedOrPrinted(ConsoleStation& station, const RunEngine& engine) {
  const bool waits = engine.Unsaved().AreKept();  // in the journal that it was to continue
  if (engine.Data().IsEmpty() || waits) return true;
  const std::string text = RunFileText(engine.Data(), false);
  try {
    if (ReadTextFile(station.OutputName()) == text) return true;
  } catch (const RuntimeError&) {
    // Told together with the rows.
  }
  station.PrintUnsaved(text);
  return false;
}

}  // namespace

ExitState RunTest(ConsoleStation& station) {
  if (!station.SetUp() || !Load(station)) return ExitState::Failed;
  // The product is connected, with the monitor probe around its cable.
  station.ConnectMeter(MeterAt::Probe);
  ConsoleDisplay display(station.Progress());
  ManualControls manual;
  RunEngine engine(station.TheShell(), station.TheInstruments(), station.TheDocuments(), display, manual);
  if (engine.Prepare() != RunReadiness::Ready || !ContinueFormer(station, engine)) return ExitState::Failed;
  if (!MayReadPower(station, engine) || !station.MayMakeOutput(engine.Steps().size())) return ExitState::Failed;
  station.Run([&] { engine.ConfirmAndRun(); });
  const bool saved = SavedOrPrinted(station, engine);
  return station.End(engine.Outcome(), saved, static_cast<std::size_t>(engine.CompletedSteps()), engine.Steps().size());
}

}  // namespace hylden
