#include "app/DesktopUtilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <QVersionNumber>
#include <filesystem>

#include "app/BusChoice.h"
#include "app/Station.h"
#include "instruments/BusPanel.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

std::string WholePath(const std::string& path) {
  return path.empty() ? path : FromQt(QFileInfo(ToQt(path)).absoluteFilePath());
}

/// An argument of a desktop entry's command: quoted, and its special characters escaped, once for the quotes and once
/// for the entry's line (freedesktop.org, desktop entries, "The Exec key").
std::string EntryArgument(const std::string& argument) {
  std::string text;
  for (const char c : argument) {
    if (c == '%') text += '%';
    if (c == '\\')
      text += R"(\\\)";
    else if (c == '"' || c == '`' || c == '$')
      text += R"(\\)";
    text += c;
  }
  return '"' + text + '"';
}

std::string BaseName(const std::string& path) {
  return fs::path(FileNameOnly(path)).stem().string();
}

void RunInterpolation(Shell& shell) {
  const QDir directory(ToQt(shell.settings.ProgramDirectory()));
  for (const char* const name : {"interp.exe", "interp"})
    if (QProcess::startDetached(directory.filePath(QLatin1String(name)), {}, directory.path())) return;
  shell.dialogs.Tell("Error running Interp.exe");
}

/// The test that the shortcut is to open, empty for none; nothing when the shortcut is given up.
std::optional<std::string> AskTest(Station& station) {
  Shell& shell = station.shell;
  switch (shell.dialogs.Show({"Is the shortcut to open a test definition, too?", "Desktop Shortcut",
                              MessageIcon::Question, MessageButtons::YesNoCancel})) {
    case MessageAnswer::Yes:
      return shell.dialogs.OpenFile({"Select Test Definition File", "Definitions (*.tst)|*.tst",
                                     shell.settings.GetDataDir(datakind::kTestSetups),
                                     WholePath(station.documents.testSetup.TestFileName)});
    case MessageAnswer::No:
      return std::string();
    default:
      return std::nullopt;
  }
}

void CreateShortcut(Station& station) {
  Shell& shell = station.shell;
  const std::string equipFile = WholePath(station.documents.equip.EquipFileName);
  if (equipFile.empty()) return shell.dialogs.Tell("Save the equipment first: a shortcut names its file.");
  const std::optional<std::string> testFile = AskTest(station);
  if (!testFile) return;
  const std::string name = "Hylden " + BaseName(testFile->empty() ? equipFile : *testFile) + ".desktop";
  const auto path =
      shell.dialogs.SaveFile({"Desktop Shortcut", "Desktop Entry (*.desktop)|*.desktop",
                              FromQt(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation)), name});
  if (!path) return;
  try {
    ReplaceFile(*path, ShortcutText(FromQt(QCoreApplication::applicationFilePath()), equipFile, *testFile));
    fs::permissions(SavePath(*path), fs::perms::owner_exec, fs::perm_options::add);
    shell.dialogs.Tell("The shortcut is there:\r\n" + *path, MessageIcon::Information);
  } catch (const std::exception& error) {
    shell.ReportError(error, "CreateShortcut", *path);
  }
}

SystemFinding DirectoryFinding(const std::string& what, const std::string& path, bool written) {
  const QFileInfo directory(ToQt(path));
  if (!directory.isDir()) return {what, path + " (not there)", false};
  if (written && !directory.isWritable()) return {what, path + " (can't be written)", false};
  return {what, path};
}

void ShowSystem(const std::vector<SystemFinding>& findings, Dialogs& dialogs) {
  std::string text;
  bool allGood = true;
  for (const SystemFinding& finding : findings) {
    text += (finding.IsGood ? "OK:  " : "NOT OK:  ") + finding.What + ": " + finding.State + "\r\n";
    allGood = allGood && finding.IsGood;
  }
  dialogs.Show({text, "System Check", allGood ? MessageIcon::Information : MessageIcon::Exclamation});
}

/// How the station's instruments are reached, and whether the bus answers; whoever has them is not disturbed.
void AddBus(Station& station, std::vector<SystemFinding>& findings) {
  if (const std::string& notice = station.shell.runNotice; !notice.empty()) findings.push_back({"Bench", notice});
  BusPanel panel(station.shell, station.instruments);
  if (const std::string obstacle = panel.Obstacle(); !obstacle.empty()) return findings.push_back({"Bus", obstacle});
  const BusPanel::Outcome cleared = panel.ClearInterface();
  if (!cleared) return findings.push_back({"Bus", cleared.error().Boxes().front().text, false});
  std::string state = *cleared;
  for (const BusPanel::Row& row : panel.Rows(station.BusUnits()))
    state += "\r\n      Address " + std::to_string(row.Unit.Address) + ": " + row.Way;
  findings.push_back({"Bus", state});
}

}  // namespace

std::string ShortcutText(const std::string& program, const std::string& equipFile, const std::string& testFile) {
  std::string command = EntryArgument(program) + " " + EntryArgument("/e:" + equipFile);
  if (!testFile.empty()) command += " " + EntryArgument("/t:" + testFile);
  std::string text = "[Desktop Entry]\nType=Application\nVersion=1.0\n";
  text += "Name=Hylden " + BaseName(testFile.empty() ? equipFile : testFile) + "\n";
  text += "Comment=Conducted RF immunity testing\nExec=" + command + "\n";
  return text + "Terminal=false\nCategories=Science;Electronics;\n";
}

std::vector<SystemFinding> CheckSystem(Station& station, const std::string& helpFile) {
  INISettings& settings = station.shell.settings;
  std::vector<SystemFinding> findings;
  findings.push_back({"System", FromQt(QSysInfo::prettyProductName() + " (" + QSysInfo::currentCpuArchitecture() +
                                       "), " + QSysInfo::kernelType() + ' ' + QSysInfo::kernelVersion())});
  // Within a major version Qt keeps old programs running, not new ones on an older library.
  const bool sameOrNewer =
      QVersionNumber::fromString(QLatin1String(qVersion())) >= QVersionNumber(QT_VERSION_MAJOR, QT_VERSION_MINOR);
  findings.push_back(
      {"Qt", std::string(qVersion()) + (sameOrNewer ? "" : ", older than the program's " QT_VERSION_STR), sameOrNewer});
  findings.push_back(DirectoryFinding("Settings", settings.ProgramDirectory(), true));
  findings.push_back(DirectoryFinding("Run log", FromQt(QDir::currentPath()), true));
  const bool hasHelp =
      QFileInfo::exists(ToQt(helpFile)) || QFileInfo::exists(ToQt(settings.SharedDirectory() + "/hylden.hlp"));
  findings.push_back({"Manual", hasHelp ? "found" : helpFile + " (not there)", hasHelp});
  AddBus(station, findings);
  for (const std::string_view kind :
       {datakind::kEquip, datakind::kCalibrations, datakind::kTestSetups, datakind::kTestResults, datakind::kCables,
        datakind::kFactors, datakind::kProbes, datakind::kFreqList, datakind::kInsertionLoss})
    findings.push_back(DirectoryFinding("Data, " + std::string(kind), settings.GetDataDir(kind),
                                        kind == datakind::kTestResults || kind == datakind::kCalibrations));
  return findings;
}

void RunUtility(Utility utility, Station& station, const std::string& helpFile) {
  switch (utility) {
    case Utility::Interpolation:
      return RunInterpolation(station.shell);
    case Utility::Shortcut:
      return CreateShortcut(station);
    case Utility::SystemCheck:
      return ShowSystem(CheckSystem(station, helpFile), station.shell.dialogs);
  }
}

}  // namespace hylden
