#include "app/DesktopProgram.h"

#include <QScopeGuard>
#include <memory>
#include <string>
#include <vector>

#include "app/BusChoice.h"
#include "app/Desktop.h"
#include "app/DesktopApplication.h"
#include "app/Recovery.h"
#include "app/StartUp.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/Account.h"
#include "platform/native/JournalFolder.h"
#include "platform/native/ProgramDirectory.h"
#include "platform/native/SingleInstance.h"
#include "platform/qt/EndSignals.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSpeaker.h"
#include "platform/qt/SecondStarts.h"

namespace hylden {

namespace {

/// The bench as the settings name it. A file that can't be used is told, and leaves the bench its ordinary values:
/// never the machine's own bus.
BenchConfig ConfiguredBench(const std::string& file, const Directories& directories, Dialogs& dialogs) {
  if (file.empty()) return {};
  const std::string path = BenchPath(file, directories);
  const BenchFile bench = LoadBenchFile(path);
  if (bench.Ok()) return bench.Config;
  dialogs.Tell("The bench file can't be used; the bench has its ordinary values.\r\n" + path + "\r\n" + bench.Error,
               MessageIcon::Exclamation);
  return {};
}

BusChoice ConfiguredBus(const Directories& directories, Dialogs& dialogs) {
  INISettings settings(directories);
  BusChoice choice = ChosenBus(settings);
  if (const std::string faults = choice.FaultText(); !faults.empty()) dialogs.Tell(faults, MessageIcon::Exclamation);
  return choice;
}

/// The instance that runs comes to the front, with the files of this start; what keeps it from that is told.
int HandOver(const SingleInstance& instance, const std::string& commandLine, Dialogs& dialogs) {
  const auto answer = instance.Ask(WithWholePaths(commandLine));
  if (answer && answer->empty()) return 0;
  dialogs.Tell(answer.value_or(kAnotherInstanceText));
  return 1;
}

int RunOn(DesktopApplication& application, QtDialogs& dialogs, const std::string& commandLine) {
  ConsoleClock clock;
  QtEventLoop events(clock);
  QtSpeaker speaker;
  QtPrinter printer;
  SingleInstance instance;
  const Directories directories = ProgramDirectories();
  const BusChoice choice = ConfiguredBus(directories, dialogs);
  Bus bus(choice, events, clock,
          choice.UsesBench() ? ConfiguredBench(choice.BenchFile, directories, dialogs) : BenchConfig());
  JournalFolder journals(JournalsIn(directories.Program));
  Shell shell(Platform{dialogs, clock, events, speaker, printer, bus.Driver()}, directories);
  shell.journals = &journals;
  shell.runNotice = choice.BenchNotice();
  shell.user = AccountName();
  Station station(shell, bus.SimulatedBench());

  printer.pdfDirectory = [&] { return shell.settings.GetDataDir(datakind::kTestResults); };

  DesktopOptions options;
  options.journals = &journals;
  options.onEnding = [&] { dialogs.CloseBoxes(); };
  options.preview = [&](const std::function<void()>& print) {
    const QtPrinter::Previewing scope(printer);
    print();
  };
  Desktop desktop(station, options);
  if (!instance.Claim()) return HandOver(instance, commandLine, dialogs);

  // The application and its boxes outlive the station and its windows.
  const auto done = qScopeGuard([&] {
    dialogs.onEscape = nullptr;
    dialogs.isEnding = nullptr;
    application.onProgramEnd = nullptr;
    application.onException = nullptr;
  });
  dialogs.onEscape = [&] { desktop.EscapeInBox(); };
  dialogs.isEnding = [&] { return shell.end.IsAsked(); };
  application.onProgramEnd = [&] { desktop.CloseAll(); };
  application.onException = [&](const std::exception& error) { shell.ReportUnforeseen(error, "Hylden"); };
  QObject::connect(&desktop, &Desktop::Ended, &application, &QCoreApplication::quit);
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &desktop, &Desktop::CloseAll);
  const SecondStarts secondStarts(instance, [&](const std::string& line) { return desktop.StartedAgain(line); });
  const EndSignals endSignals([&] { desktop.CloseAll(); });
  return desktop.Start(commandLine) ? QApplication::exec() : 1;
}

}  // namespace

int RunDesktop(DesktopApplication& application, const std::vector<std::string>& arguments) {
  QApplication::setApplicationName(QStringLiteral("hylden"));
  // A form hides the one that opened it: the last visible window often closes before the program ends.
  QApplication::setQuitOnLastWindowClosed(false);
  QtDialogs dialogs;
  try {
    return RunOn(application, dialogs, JoinArguments(arguments));
  } catch (const std::exception& error) {
    dialogs.Show({error.what(), "Error", MessageIcon::Critical});
    return 1;
  }
}

}  // namespace hylden
