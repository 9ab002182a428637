#include "app/ConsoleStation.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "app/BusChoice.h"
#include "app/Recovery.h"
#include "app/TraceFile.h"
#include "platform/FlagRaised.h"
#include "platform/native/Account.h"
#include "platform/native/ProgramDirectory.h"
#include "run/ForwardSensor.h"
#include "run/RunQuestions.h"
#include "text/Duration.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

/// What a row of any of the files takes at most, roughly, and what stands around the rows.
constexpr std::size_t kBytesOfRow = 64, kBytesAround = 1024;

bool AtTerminal(int descriptor) {
  return isatty(descriptor) != 0;
}

}  // namespace

ConsoleStation::ConsoleStation(const RunOptions& options)
    : options_(options),
      terminal_(AtTerminal(STDIN_FILENO) && AtTerminal(STDOUT_FILENO)),
      realEvents_(realClock_,
                  [this] {
                    if (running_) TheShell().delay.RequestHalt();
                  }),
      progress_(std::cout, AtTerminal(STDOUT_FILENO), TheClock()),
      dialogs_(STDIN_FILENO, std::cout, realEvents_, DialogOptions()),
      printer_(std::cout),
      output_(options) {
  // Ctrl-C counts on a virtual clock, too.
  virtualEvents_.onYield = [this] { realEvents_.Yield(0); };
}

ConsoleStation::~ConsoleStation() = default;

Clock& ConsoleStation::TheClock() {
  if (options_.VirtualTime) return virtualClock_;
  return realClock_;
}

EventLoop& ConsoleStation::TheLoop() {
  if (options_.VirtualTime) return virtualEvents_;
  return realEvents_;
}

ConsoleDialogsOptions ConsoleStation::DialogOptions() {
  // The output file was named on the command line: saving to it is no question any more.
  ConsoleDialogsOptions dialogs{.terminal = terminal_,
                                .confirmedTitles = {question::kSaveRunData, question::kSaveCalibration},
                                .savePath = [this] { return PlaceToSave(); }};
  if (options_.Yes) {
    for (const char* title : {question::kMakeSure, question::kReplace}) dialogs.confirmedTitles.emplace_back(title);
    if (options_.UseBench) dialogs.confirmedTitles.emplace_back(question::kPass);
  }
  dialogs.beforeText = [this] { progress_.End(); };
  return dialogs;
}

bool ConsoleStation::SetUp() {
  if (!MakeBus()) return false;
  shell_ = std::make_unique<Shell>(Platform{dialogs_, TheClock(), TheLoop(), speaker_, printer_, bus_->Driver()},
                                   ProgramDirectories());
  journals_ =
      std::make_unique<JournalFolder>(JournalsIn(shell_->settings.ProgramDirectory()),
                                      options_.VirtualTime ? JournalFolder::Time::Virtual : JournalFolder::Time::Real);
  shell_->journals = journals_.get();
  // What was to be continued once can be continued again, however soon the run ends.
  shell_->keepsJournals =
      options_.What != RunOptions::Job::CableLoss && (options_.KeepJournal || !options_.Resume.empty());
  station_ = std::make_unique<Station>(*shell_, bus_->SimulatedBench());
  TheShell().runNotice = notice_;
  TheShell().user = AccountName();
  if (!notice_.empty()) std::cout << notice_ << '\n' << std::flush;
  const bool wantsNone = options_.What == RunOptions::Job::BusInfo && options_.EquipmentFile.empty();
  return wantsNone || (station_->LoadEquipment(options_.EquipmentFile) && station_->Apply());
}

/// The bench alone where the options say so, else what the settings choose.
BusChoice ConsoleStation::ChooseBus() {
  if (options_.UseBench) return {.Others = {BusWay::Kind::Bench}, .BenchFile = options_.BenchFile};
  INISettings settings(ProgramDirectories());
  BusChoice choice = ChosenBus(settings);
  if (const std::string faults = choice.FaultText(); !faults.empty()) Tell(faults);
  if (!choice.BenchFile.empty()) choice.BenchFile = BenchPath(choice.BenchFile, ProgramDirectories());
  return choice;
}

bool ConsoleStation::MakeBus() {
  if (!options_.UseBench && !instance_.Claim()) {
    Tell(kAnotherInstanceText);
    return false;
  }
  const BusChoice choice = ChooseBus();
  BenchConfig config;
  if (choice.UsesBench() && !choice.BenchFile.empty()) {
    BenchFile file = LoadBenchFile(choice.BenchFile);
    if (!file.Ok()) {
      std::cerr << file.Error << '\n';
      return false;
    }
    config = std::move(file.Config);
  }
  if (options_.Seed) config.Seed = *options_.Seed;
  bus_ = std::make_unique<Bus>(choice, TheLoop(), TheClock(), config);
  notice_ = choice.BenchNotice();
  if (options_.VirtualTime)
    bus_->SimulatedBench()->Bus().passTime = [this](std::int64_t ms) { virtualClock_.Advance(ms); };
  return true;
}

bool ConsoleStation::MayMakeOutput(std::size_t rows) {
  auto files = FilesOfTheRun(options_, TheDocuments(), TheShell().settings.ProgramDirectory());
  if (const auto replaced = FirstReplaced(output_.Files(), files)) {
    Tell("--output would replace a file that this run uses: " + *replaced);
    return false;
  }
  for (const std::string& file : output_.Files()) {
    if (const auto obstacle = SaveObstacle(file, rows * kBytesOfRow + kBytesAround)) {
      Tell("Nothing can be written to " + file + ": " + *obstacle);
      return false;
    }
    if (!MayReplace(file, " exists. Replace it?")) {
      Tell("The file is kept; nothing was switched on.");
      return false;
    }
  }
  output_.Note();
  files.insert(files.end(), output_.Files().begin(), output_.Files().end());
  if (!MayMakeTrace(files)) return false;
  if (const auto obstacle = journals_->Obstacle())
    std::cout << "No journal can be kept in " << journals_->Folder() << ": " << *obstacle
              << ". What is recorded is lost if the program is.\n"
              << std::flush;
  else
    std::cout << "What is recorded is kept in " << journals_->Folder() << " until it is saved.\n" << std::flush;
  return true;
}

bool ConsoleStation::MayMakeTrace(const std::vector<std::string>& files) {
  const std::string& name = options_.TraceFile;
  if (name.empty()) return true;
  if (const auto replaced = FirstReplaced({name}, files)) {
    Tell("--trace would replace a file that this run uses: " + *replaced);
    return false;
  }
  if (const auto obstacle = SaveObstacle(name, kBytesAround)) {
    Tell("Nothing can be written to " + name + ": " + *obstacle);
    return false;
  }
  if (!MayReplace(name, " exists. Replace it?")) {
    Tell("The file is kept; nothing was switched on.");
    return false;
  }
  trace_ = std::make_unique<TraceFile>(name);
  trace_->Follow(TheShell().gpib.Trace());
  return true;
}

bool ConsoleStation::MayReplace(const std::string& file, const std::string& question) {
  std::error_code error;
  if (!std::filesystem::exists(SavePath(file), error)) return true;
  return dialogs_.Show({file + question, question::kReplace, MessageIcon::Question, MessageButtons::YesNo}) ==
         MessageAnswer::Yes;
}

/// The file that was asked for. One that has come meanwhile is nobody's to replace unasked, "--yes" or not, and whoever
/// has stopped the program may not be there to answer: it is kept then, and the data go beside it.
std::string ConsoleStation::PlaceToSave() {
  const bool mayAsk = terminal_ && !options_.Yes && !realEvents_.StopRequested();
  for (const std::string& file : output_.Appeared()) {
    if (mayAsk && MayReplace(file, " has come or changed meanwhile. Replace it?")) continue;
    output_.MoveAside();
    progress_.End();
    std::cout << file << " has come or changed meanwhile and is kept.\n"
              << "What was recorded goes to " << output_.Name() << '\n'
              << std::flush;
    break;
  }
  return output_.Name();
}

void ConsoleStation::ConnectMeter(MeterAt place) {
  if (Bench* const bench = bus_->SimulatedBench()) bench->Connect(place);
}

bool ConsoleStation::Confirm(const std::string& text, const char* title) {
  return dialogs_.Show({text, title, MessageIcon::Exclamation, MessageButtons::OkCancel}) == MessageAnswer::Ok;
}

void ConsoleStation::TellBadEntry(const EntryFailure& failure, const std::string& document) {
  constexpr std::size_t kPrefix = 3;  // of a control's name; the rest is what the file's page calls it
  Tell(failure.Text.empty() ? "The " + document + " holds an entry that can't be used: " +
                                  failure.Control.substr(kPrefix) + failure.Allowed()
                            : failure.Text);
}

bool ConsoleStation::MayMoveSensor(const std::vector<double>& frequenciesMHz) {
  if (options_.UseBench || terminal_ || !SensorMoves(TheDocuments().equip.Record, frequenciesMHz)) return true;
  Tell("Between the bands somebody at a terminal has to move the power sensor to the other coupler.");
  return false;
}

void ConsoleStation::Run(const std::function<void()>& work) {
  realEvents_.Yield(0);
  if (realEvents_.StopRequested()) return;
  const FlagRaised running(running_);
  hasRun_ = true;
  const std::int64_t start = TheClock().TickMs();
  work();
  elapsedMs_ += TheClock().TickMs() - start;
  progress_.End();
}

void ConsoleStation::PrintUnsaved(const std::string& text) {
  std::cout << "This is not in " << output_.Name() << ":\n" << text << std::flush;
}

void ConsoleStation::TellJournals() {
  if (!journals_) return;
  for (const std::string& name : journals_->Kept()) {
    std::cout << "A journal has what was recorded: hylden-run --recover " << name << " --output FILE\n";
    if (TheShell().keepsJournals && hasRun_) std::cout << "The run can be continued: --resume " << name << '\n';
  }
  if (const auto trouble = journals_->Trouble()) std::cout << "The journal could not be written: " << *trouble << '\n';
  std::cout << std::flush;
}

ExitState ConsoleStation::End(RunOutcome outcome, bool saved, std::size_t done, std::size_t planned) {
  const bool finished = outcome == RunOutcome::Finished;
  if (outcome == RunOutcome::NotRun)
    std::cout << "Nothing was switched on.\n";
  else
    std::cout << (finished ? "Finished: " : "Ended early: ") << done << " of " << planned << " steps in "
              << DurationText(static_cast<double>(elapsedMs_) / 1000) << (options_.VirtualTime ? " of bench time" : "")
              << '\n';
  if (realEvents_.StopRequested()) return ExitState::Halted;
  return finished && saved && !output_.IsAside() ? ExitState::Finished : ExitState::Failed;
}

}  // namespace hylden
