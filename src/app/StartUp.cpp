#include "app/StartUp.h"

#include <filesystem>
#include <utility>

#include "app/Station.h"
#include "shell/RecentFiles.h"
#include "text/Case.h"
#include "text/ExistingPath.h"

namespace hylden {

namespace {

constexpr std::size_t kSwitchLength = 3;

constexpr std::string_view kRunSwitch = "/r:";

/// A kind of file that the command line opens.
struct OpenedKind {
  std::string_view Switch;
  const char* Extension;
  std::string CommandLine::*File;  ///< null: one of the saved runs, which are shown beside the work
  const char* LogLine;
};
constexpr OpenedKind kOpenedKinds[] = {
    {"/e:", ".eqp", &CommandLine::EquipFile, "equip file loaded from command line"},
    {"/t:", ".tst", &CommandLine::TestFile, "test file loaded from command line"},
    {kRunSwitch, ".run", nullptr, ""},
};

const OpenedKind* KindOfSwitch(std::string_view piece) {
  for (const OpenedKind& kind : kOpenedKinds)
    if (piece.starts_with(kind.Switch)) return &kind;
  return nullptr;
}

const OpenedKind* KindOfFile(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension().string();
  for (const OpenedKind& kind : kOpenedKinds)
    if (SameIgnoringCase(extension, kind.Extension)) return &kind;
  return nullptr;
}

/// "/x:...", known or not, or a whole command line in quotes.
bool IsForStartUp(const std::string& argument) {
  return argument.size() <= kSwitchLength || argument.find('"') != std::string::npos ||
         (argument[0] == '/' && argument[kSwitchLength - 1] == ':');
}

std::string ArgumentFault(const std::string& argument) {
  if (argument.starts_with('-')) return "unknown option: " + argument;
  if (IsForStartUp(argument)) return {};
  if (!KindOfFile(argument)) return "not a kind of file that it opens: " + argument;
  std::error_code unknown;
  return std::filesystem::exists(ExistingPath(argument), unknown) ? std::string() : "no such file: " + argument;
}

std::vector<std::string> SplitAtQuotes(std::string_view text) {
  std::vector<std::string> pieces(1);
  for (const char character : text) {
    if (character == '"')
      pieces.emplace_back();
    else
      pieces.back() += character;
  }
  return pieces;
}

/// The list has whole paths: the program may be started elsewhere next time.
void AddRecent(Shell& shell, std::string_view kind, const std::string& path) {
  std::error_code ignored;
  const std::filesystem::path whole = std::filesystem::absolute(ExistingPath(path), ignored);
  RecentFiles(shell.settings, kind).Add(whole.lexically_normal().string());
}

void LoadStation(Station& station, std::string path) {
  Shell& shell = station.shell;
  if (path.empty()) {
    path = shell.settings.GetDefaultEquipFile();
    shell.log.LogFile("default equipment file loaded");
  }
  if (path.empty() || !station.LoadEquipment(path)) return;
  AddRecent(shell, datakind::kEquip, path);
  station.Apply();
}

bool LoadTest(Station& station, const std::string& path) {
  Dialogs& dialogs = station.shell.dialogs;
  TestSetup& test = station.documents.testSetup;
  if (!station.shell.Ok(test.LoadDef(path))) {
    dialogs.Tell("Error loading test setup file: " + path);
    return false;
  }
  AddRecent(station.shell, datakind::kTestSetups, path);
  const std::string& calInfoFile = test.Definition.CalInfoFile;
  if (station.shell.Ok(station.documents.calInfo.LoadDef(calInfoFile))) return true;
  dialogs.Tell("Error loading calinfo file: " + calInfoFile);
  return false;
}

}  // namespace

CommandLine ParseCommandLine(std::string_view text) {
  CommandLine line;
  for (const std::string& piece : SplitAtQuotes(text)) {
    if (const OpenedKind* const kind = KindOfSwitch(piece)) {
      const std::string file = piece.substr(kSwitchLength);
      if (!kind->File) {
        line.RunFiles.push_back(file);
        continue;
      }
      line.*kind->File = file;
      line.LogLines.emplace_back(kind->LogLine);
    } else if (piece.size() > kSwitchLength) {
      line.Ok = false;
      break;
    }
  }
  return line;
}

std::string AsSwitch(const std::string& argument) {
  const OpenedKind* const kind = KindOfSwitch(argument) ? nullptr : KindOfFile(argument);
  return kind ? std::string(kind->Switch) + argument : argument;
}

std::string ArgumentFaults(const std::vector<std::string>& arguments) {
  std::string faults;
  for (const std::string& argument : arguments)
    if (const std::string fault = ArgumentFault(argument); !fault.empty()) faults += fault + '\n';
  return faults;
}

std::string JoinArguments(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += argument.find('"') == std::string::npos ? '"' + argument + '"' : argument;
  }
  return line;
}

std::string WithWholePaths(const std::string& commandLine) {
  const CommandLine line = ParseCommandLine(commandLine);
  if (!line.Ok) return commandLine;
  std::string whole;
  const auto add = [&whole](std::string_view kind, const std::string& path) {
    if (!path.empty()) whole += '"' + std::string(kind) + std::filesystem::absolute(path).string() + "\" ";
  };
  for (const OpenedKind& kind : kOpenedKinds)
    if (kind.File) add(kind.Switch, line.*kind.File);
  for (const std::string& file : line.RunFiles) add(kRunSwitch, file);
  return whole;
}

Opening StartUp(Station& station, const std::string& commandLine) {
  const CommandLine line = ParseCommandLine(commandLine);
  for (const std::string& entry : line.LogLines) station.shell.log.LogFile(entry);
  if (!line.Ok) {
    station.shell.dialogs.Tell("Command line error, (" + commandLine + ")");
    return Opening::MainMenu;
  }
  LoadStation(station, line.EquipFile);
  const bool test = !line.TestFile.empty() && LoadTest(station, line.TestFile);
  return test ? Opening::TestDefinition : Opening::MainMenu;
}

}  // namespace hylden
