#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/ConsoleOutput.h"
#include "app/ConsoleRun.h"
#include "app/ProgressLine.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "platform/VirtualTime.h"
#include "platform/console/ConsoleClock.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/console/ConsoleEventLoop.h"
#include "platform/console/ConsolePrinter.h"
#include "platform/console/ConsoleSpeaker.h"
#include "platform/native/JournalFolder.h"
#include "platform/native/SingleInstance.h"
#include "run/RunOutcome.h"

namespace hylden {

class Bus;
class TraceFile;
struct BusChoice;

/// Further titles of questions that "--yes" confirms.
namespace question {
inline constexpr const char* kReplace = "Replace file";
inline constexpr const char* kPass = "Cable pass";  ///< on the bench only: nobody else changes its cables
}  // namespace question

/// The program on a terminal: its machine, its station with the equipment loaded, and what every job has to ask before
/// it switches anything on and to tell when it is over.
class ConsoleStation {
 public:
  explicit ConsoleStation(const RunOptions& options);
  ~ConsoleStation();

  /// Builds the bus and the station and loads its equipment, which a look at the bus need not name. @return false after
  /// a message
  bool SetUp();
  /// Whether what the job makes can be saved: it replaces nothing that the job reads, it can be written, and a file
  /// that is there may be replaced. To be called when the job's files are loaded, before it switches anything on.
  /// @param rows  how many the job will record
  /// @return false after a message
  bool MayMakeOutput(std::size_t rows);

  /// Begins the file of the trace, where one is wanted; it is none of the files.
  /// @return false after a message
  bool MayMakeTrace(const std::vector<std::string>& files);

  const RunOptions& Options() const { return options_; }
  Shell& TheShell() { return *shell_; }
  Instruments& TheInstruments() { return station_->instruments; }
  Documents& TheDocuments() { return station_->documents; }
  std::vector<BusUnit> BusUnits() const { return station_->BusUnits(); }
  JournalFolder& Journals() { return *journals_; }
  ProgressLine& Progress() { return progress_; }
  bool HasTerminal() const { return terminal_; }
  /// Cables the simulated meter; a real one is the operator's.
  void ConnectMeter(MeterAt place);

  void Tell(const std::string& text) { dialogs_.Tell(text); }
  /// Asks OK or Cancel.
  bool Confirm(const std::string& text, const char* title);
  /// Whether nobody has to move the power sensor to the other coupler on the way through these frequencies, MHz, or
  /// somebody can. @return false after a message
  bool MayMoveSensor(const std::vector<double>& frequenciesMHz);
  /// Tells what is wrong with a document's entry.
  void TellBadEntry(const EntryFailure& failure, const std::string& document);

  /// Whether Ctrl-C was pressed, or the program told to end.
  bool IsStopped() const { return realEvents_.StopRequested(); }
  /// Does the job's work, with Ctrl-C pressing its Halt meanwhile. Nothing is begun when it was pressed before.
  void Run(const std::function<void()>& work);
  /// Prints what could not be saved, so that nothing measured is lost.
  void PrintUnsaved(const std::string& text);
  /// Tells, behind the job, which journals are left of it, and that one could not be written.
  void TellJournals();
  /// Where the job's data are, or would be if they could be saved.
  const std::string& OutputName() const { return output_.Name(); }
  /// Tells how the job's work ended.
  /// @param saved  what was measured is in its file, or nothing was
  ExitState End(RunOutcome outcome, bool saved, std::size_t done, std::size_t planned);

 private:
  Clock& TheClock();
  EventLoop& TheLoop();
  ConsoleDialogsOptions DialogOptions();
  BusChoice ChooseBus();
  bool MakeBus();
  bool MayReplace(const std::string& file, const std::string& question);
  std::string PlaceToSave();

  const RunOptions& options_;
  const bool terminal_;
  ConsoleClock realClock_;
  VirtualClock virtualClock_{realClock_};
  VirtualEventLoop virtualEvents_{virtualClock_};
  bool running_ = false;
  bool hasRun_ = false;  ///< a run has been begun
  ConsoleEventLoop realEvents_;
  ProgressLine progress_;
  ConsoleDialogs dialogs_;
  ConsoleSpeaker speaker_;
  ConsolePrinter printer_;
  SingleInstance instance_;
  ConsoleOutput output_;
  std::unique_ptr<TraceFile> trace_;
  std::unique_ptr<Bus> bus_;
  std::string notice_;  ///< of the simulated bench
  std::unique_ptr<JournalFolder> journals_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Station> station_;
  std::int64_t elapsedMs_ = 0;
};

}  // namespace hylden
