#include "app/DesktopProgram.h"

#include <QScopeGuard>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/BusChoice.h"
#include "app/Desktop.h"
#include "app/DesktopApplication.h"
#include "app/StartUp.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/ProgramDirectory.h"
#include "platform/native/SingleInstance.h"
#include "platform/qt/EndSignals.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSpeaker.h"

namespace hylden {

namespace {

/// A relative path starts at the program directory, or beside the settings of all users.
std::string BenchPath(const std::string& file, const Directories& directories) {
  const std::filesystem::path common = std::filesystem::path(directories.Common) / file;
  const std::filesystem::path own = std::filesystem::path(directories.Program) / file;
  std::error_code ignored;
  const bool useCommon =
      !directories.Common.empty() && !std::filesystem::exists(own, ignored) && std::filesystem::exists(common, ignored);
  return useCommon ? common.string() : own.string();
}

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

std::unique_ptr<Bus> MakeBus(const Directories& directories, const Clock& clock, Dialogs& dialogs) {
  INISettings settings(directories);
  const BusChoice choice = ChosenBus(settings);
  if (!choice.UseBench) return std::make_unique<Bus>(choice);
  return std::make_unique<Bus>(clock, ConfiguredBench(choice.BenchFile, directories, dialogs));
}

int RunOn(DesktopApplication& application, QtDialogs& dialogs, const std::string& commandLine) {
  ConsoleClock clock;
  QtEventLoop events(clock);
  QtSpeaker speaker;
  QtPrinter printer;
  SingleInstance instance;
  const Directories directories = ProgramDirectories();
  const std::unique_ptr<Bus> bus = MakeBus(directories, clock, dialogs);
  Shell shell(Platform{dialogs, clock, events, speaker, printer, bus->Driver()}, directories);
  Station station(shell, bus->SimulatedBench());

  printer.pdfDirectory = [&] { return shell.settings.GetDataDir(datakind::kTestResults); };

  DesktopOptions options;
  options.onEnding = [&] { dialogs.CloseBoxes(); };
  options.preview = [&](const std::function<void()>& print) {
    const QtPrinter::Previewing scope(printer);
    print();
  };
  Desktop desktop(station, options);
  if (!instance.Claim()) {
    dialogs.Tell(kAnotherInstanceText);
    return 1;
  }

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
