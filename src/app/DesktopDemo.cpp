#include "app/DesktopDemo.h"

#include <QCoreApplication>
#include <QProcess>
#include <filesystem>

#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSettings = "[Gpib]\r\nDriver=bench\r\nBench=bench.txt\r\n[Equip]\r\nFile=station.eqp\r\n";
constexpr const char* kName = "Demo station";

fs::path StationIn(const std::string& sharedDirectory) {
  return fs::path(sharedDirectory) / "station";
}

}  // namespace

bool HasDemoStation(const std::string& sharedDirectory) {
  std::error_code ignored;
  return !sharedDirectory.empty() && fs::is_directory(StationIn(sharedDirectory), ignored);
}

void CopyDemoStation(const std::string& sharedDirectory, const std::string& directory) {
  fs::create_directories(directory);
  fs::copy(StationIn(sharedDirectory), directory, fs::copy_options::skip_existing | fs::copy_options::recursive);
  const std::string settings = (fs::path(directory) / "Hylden.ini").string();
  if (!fs::exists(settings)) ReplaceFile(settings, kSettings);
}

void OpenDemoStation(Shell& shell) {
  const std::string directory = (fs::path(shell.settings.FilesDirectory()) / kName).string();
  try {
    CopyDemoStation(shell.settings.SharedDirectory(), directory);
  } catch (const fs::filesystem_error& error) {
    return shell.dialogs.Tell("The demo station can't be copied to\r\n" + directory + "\r\n" + error.code().message(),
                              MessageIcon::Exclamation);
  } catch (const std::exception& error) {
    return shell.ReportError(error, "OpenDemoStation", directory);
  }
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("HYLDEN_HOME"), ToQt(directory));
  // It drives no bus: it may run beside the program that does.
  environment.insert(QStringLiteral("HYLDEN_LOCK"), QStringLiteral("demo"));
  QProcess program;
  program.setProgram(QCoreApplication::applicationFilePath());
  program.setWorkingDirectory(ToQt(directory));
  program.setProcessEnvironment(environment);
  if (!program.startDetached())
    shell.dialogs.Tell("The demo station could not be started:\r\n" + FromQt(program.errorString()),
                       MessageIcon::Exclamation);
}

}  // namespace hylden
