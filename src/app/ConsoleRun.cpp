#include "app/ConsoleRun.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>

#include "app/BusChoice.h"
#include "app/ConsoleDisplay.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "platform/VirtualTime.h"
#include "platform/console/ConsoleClock.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/console/ConsoleEventLoop.h"
#include "platform/console/ConsolePrinter.h"
#include "platform/console/ConsoleSpeaker.h"
#include "platform/native/ProgramDirectory.h"
#include "testrun/RunCommands.h"
#include "testrun/RunControls.h"
#include "testrun/RunEngine.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr const char* kReplaceTitle = "Replace run data";

bool AtTerminal(int descriptor) {
  return isatty(descriptor) != 0;
}

/// The program on a terminal: its world, its station and the run of one test.
class ConsoleRun {
 public:
  explicit ConsoleRun(const RunOptions& options);
  ExitState Run();

 private:
  const Clock& TheClock() const { return options_.VirtualTime ? static_cast<const Clock&>(virtualClock_) : realClock_; }
  EventLoop& TheLoop() { return options_.VirtualTime ? static_cast<EventLoop&>(virtualEvents_) : realEvents_; }
  ConsoleDialogsOptions DialogOptions();
  void OnStop();

  bool MayWriteOutput();
  bool LoadStation();
  bool LoadTest();
  bool Validate();
  ExitState RunTest();
  /// Whether the run data are in the output file; otherwise they are printed, so that no row is lost.
  bool Saved(const RunEngine& engine);
  void Summary(const RunEngine& engine, bool finished, double minutes);

  const RunOptions& options_;
  const bool terminal_ = AtTerminal(STDIN_FILENO) && AtTerminal(STDOUT_FILENO);
  ConsoleClock realClock_;
  VirtualClock virtualClock_;
  VirtualEventLoop virtualEvents_{virtualClock_};
  std::function<void()> halt_;
  ConsoleEventLoop realEvents_{realClock_, [this] { OnStop(); }};
  ConsoleDisplay display_{std::cout, AtTerminal(STDOUT_FILENO)};
  ConsoleDialogs dialogs_{STDIN_FILENO, std::cout, realEvents_, DialogOptions()};
  ConsoleSpeaker speaker_;
  ConsolePrinter printer_{std::cout};
  std::unique_ptr<Bus> bus_;
  std::unique_ptr<Station> station_;
};

ConsoleRun::ConsoleRun(const RunOptions& options) : options_(options) {
  // Ctrl-C counts on a virtual clock, too.
  virtualEvents_.onYield = [this] { realEvents_.Yield(0); };
}

ConsoleDialogsOptions ConsoleRun::DialogOptions() {
  // The output file was named on the command line: saving to it is no question any more.
  ConsoleDialogsOptions dialogs{
      .terminal = terminal_, .confirmedTitles = {"Save Run Data"}, .savePath = options_.OutputFile};
  if (options_.Yes) {
    dialogs.confirmedTitles.emplace_back("MAKE SURE!!!");
    dialogs.confirmedTitles.emplace_back(kReplaceTitle);
  }
  dialogs.beforeText = [this] { display_.EndLine(); };
  return dialogs;
}

void ConsoleRun::OnStop() {
  if (halt_) halt_();
}

ExitState ConsoleRun::Run() {
  BenchConfig config;
  if (options_.UseBench && !options_.BenchFile.empty()) {
    BenchFile file = LoadBenchFile(options_.BenchFile);
    if (!file.Ok()) {
      std::cerr << file.Error << '\n';
      return ExitState::Failed;
    }
    config = std::move(file.Config);
  }
  if (options_.Seed) config.Seed = *options_.Seed;
  bus_ = options_.UseBench ? std::make_unique<Bus>(TheClock(), config) : std::make_unique<Bus>();
  if (options_.VirtualTime)
    bus_->SimulatedBench()->Bus().passTime = [this](std::int64_t ms) { virtualClock_.Advance(ms); };
  Clock& clock = options_.VirtualTime ? static_cast<Clock&>(virtualClock_) : realClock_;
  station_ = std::make_unique<Station>(Platform{dialogs_, clock, TheLoop(), speaker_, printer_, bus_->Driver()},
                                       ProgramDirectory());
  if (options_.UseBench) std::cout << "SIMULATED BENCH: no instrument is driven\n" << std::flush;
  if (!MayWriteOutput() || !LoadStation() || !LoadTest()) return ExitState::Failed;
  return RunTest();
}

bool ConsoleRun::MayWriteOutput() {
  namespace fs = std::filesystem;
  const fs::path output = options_.OutputFile;
  std::error_code error;
  const fs::path folder = output.has_parent_path() ? output.parent_path() : fs::path(".");
  if (!fs::is_directory(folder, error) || access(folder.c_str(), W_OK) != 0 || fs::is_directory(output, error)) {
    dialogs_.Tell("The run data can't be written to " + options_.OutputFile);
    return false;
  }
  if (!fs::exists(output, error)) return true;
  if (dialogs_.Show({options_.OutputFile + " exists. Replace it?", kReplaceTitle, MessageIcon::Question,
                     MessageButtons::YesNo}) == MessageAnswer::Yes)
    return true;
  dialogs_.Tell("The file is kept; nothing was switched on.");
  return false;
}

bool ConsoleRun::LoadStation() {
  Equip& equip = station_->documents.equip;
  if (equip.LoadDef(options_.EquipmentFile) != 1) {
    dialogs_.Tell("Error loading equipment file " + options_.EquipmentFile);
    return false;
  }
  if (!equip.LoadDefinitions()) return false;
  if (const auto failure = equip.ApplyEquipment(equip.Entries())) {
    dialogs_.Tell("The equipment file holds an entry that can't be used: " + failure->Control);
    return false;
  }
  bus_->EquipBench(equip.Record, station_->instruments);
  return true;
}

bool ConsoleRun::LoadTest() {
  Documents& documents = station_->documents;
  if (!documents.testSetup.LoadDef(options_.TestFile)) {
    dialogs_.Tell("Error loading test setup file: " + options_.TestFile);
    return false;
  }
  const std::string infoFile = documents.testSetup.Definition.CalInfoFile;
  if (!documents.calInfo.LoadDef(infoFile)) {
    dialogs_.Tell("Error loading calinfo file: " + infoFile);
    return false;
  }
  if (!Validate()) return false;
  // The simulated meter is cabled as the test needs it.
  if (Bench* bench = bus_->SimulatedBench(); bench && documents.testSetup.Definition.MonitorProbe)
    bench->Connect(MeterAt::Probe);
  return true;
}

bool ConsoleRun::Validate() {
  Documents& documents = station_->documents;
  TestDefinition& test = documents.testSetup.Definition;
  TestDefinitionEntries entries = EntriesOf(test);
  const TestValidation validation = ValidateTestDefinition(entries, documents.calInfo.Record.FreqRange, test);
  for (const std::string& notice : validation.Notices) dialogs_.Tell(notice);
  if (validation.Failure) {
    const EntryFailure& failure = *validation.Failure;
    dialogs_.Tell(failure.Text.empty() ? "The test definition holds a value outside its valid range: " + failure.Control
                                       : failure.Text);
    return false;
  }
  if (const auto failure = CheckStart(test, documents.equip.Record)) {
    dialogs_.Tell(failure->Text);
    return false;
  }
  return true;
}

ExitState ConsoleRun::RunTest() {
  RunControls controls;
  RunEngine engine(station_->shell, station_->instruments, station_->documents, display_, controls);
  RunCommands commands(station_->shell, station_->documents, engine, controls);
  halt_ = [&commands] { commands.Halt(); };
  if (engine.Prepare() != RunReadiness::Ready) return ExitState::Failed;
  realEvents_.Yield(0);
  if (realEvents_.StopRequested()) return ExitState::Halted;

  const std::int64_t start = TheClock().TickMs();
  commands.Run();
  halt_ = nullptr;
  display_.Finish();
  const double minutes = static_cast<double>(TheClock().TickMs() - start) / 60000;

  const bool finished = engine.Outcome() == RunOutcome::Finished;
  if (engine.Outcome() == RunOutcome::NotRun) std::cout << "Nothing was switched on.\n";
  const bool saved = Saved(engine);
  Summary(engine, finished, minutes);
  if (realEvents_.StopRequested()) return ExitState::Halted;
  return finished && saved ? ExitState::Finished : ExitState::Failed;
}

bool ConsoleRun::Saved(const RunEngine& engine) {
  if (engine.Data().IsEmpty()) return true;
  const std::string text = RunFileText(engine.Data(), false);
  try {
    if (ReadTextFile(options_.OutputFile) == text) return true;
  } catch (const RuntimeError&) {
    // Told below, together with the rows.
  }
  std::cout << "The run data are not in " << options_.OutputFile << "; here they are:\n" << text << std::flush;
  return false;
}

void ConsoleRun::Summary(const RunEngine& engine, bool finished, double minutes) {
  if (engine.Outcome() == RunOutcome::NotRun) return;
  std::cout << (finished ? "Finished: " : "Ended early: ") << engine.CompletedSteps() << " of " << engine.Steps().size()
            << " steps in " << Format(minutes, "##0.0") << " min" << (options_.VirtualTime ? " of bench time" : "")
            << '\n';
}

}  // namespace

ExitState RunOnConsole(const RunOptions& options) {
  try {
    return ConsoleRun(options).Run();
  } catch (const ProgramEnd&) {
    return ExitState::Failed;  // its message has been shown
  } catch (const std::exception& error) {
    std::cerr << "hylden-run: " << error.what() << '\n';
    return ExitState::Failed;
  }
}

}  // namespace hylden
