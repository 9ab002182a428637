#include "shell/StartUp.h"

#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr std::string_view kEquipSwitch = "/e:", kTestSwitch = "/t:";
constexpr std::size_t kSwitchLength = 3;
constexpr std::string_view kHelpFile = "hylden.hlp";

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

void LoadStation(Shell& shell, StartUpSteps& steps, std::string path) {
  if (path.empty()) {
    path = shell.settings.GetDefaultEquipFile();
    shell.log.LogFile("default equipment file loaded");
  }
  if (path.empty()) return;
  if (steps.LoadEquipment(path))
    steps.ApplyEquipment();
  else
    shell.dialogs.Tell("Error loading equipment file " + path);
}

void LoadNamedTest(Shell& shell, StartUpSteps& steps, const std::string& path) {
  if (!steps.LoadTest(path)) return shell.dialogs.Tell("Error loading test setup file: " + path);
  const std::string calInfoFile = steps.CalInfoFile();
  if (!steps.LoadCalInfo(calInfoFile)) return shell.dialogs.Tell("Error loading calinfo file: " + calInfoFile);
  steps.OpenTestDefinition();
}

}  // namespace

std::string VersionTitle() {
  return "Hylden " + std::to_string(HYLDEN_MAJOR) + "." + std::to_string(HYLDEN_MINOR);
}

std::string HelpFilePath(std::string_view programDirectory) {
  std::string path(programDirectory);
  if (!path.ends_with('/') && !path.ends_with('\\')) path += '/';
  return path.append(kHelpFile);
}

CommandLine ParseCommandLine(std::string_view text) {
  CommandLine line;
  for (const std::string& piece : SplitAtQuotes(text)) {
    if (piece.starts_with(kEquipSwitch)) {
      line.EquipFile = piece.substr(kSwitchLength);
      line.LogLines.emplace_back("equip file loaded from command line");
    } else if (piece.starts_with(kTestSwitch)) {
      line.TestFile = piece.substr(kSwitchLength);
      line.LogLines.emplace_back("test file loaded from command line");
    } else if (piece.size() > kSwitchLength) {
      line.Ok = false;
      break;
    }
  }
  return line;
}

std::string JoinArguments(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) {
    if (!line.empty()) line += ' ';
    line += argument.find('"') == std::string::npos ? '"' + argument + '"' : argument;
  }
  return line;
}

bool StartUp(Shell& shell, StartUpSteps& steps, const std::string& commandLine) {
  steps.SetTitle(VersionTitle());
  if (steps.AnotherInstanceRuns()) {
    shell.dialogs.Tell(kAnotherInstanceText);
    return false;
  }
  steps.SetHelpFile(HelpFilePath(shell.settings.ProgramDirectory()));
  const CommandLine line = ParseCommandLine(commandLine);
  for (const std::string& entry : line.LogLines) shell.log.LogFile(entry);
  if (!line.Ok) {
    shell.dialogs.Tell("Command line error, (" + commandLine + ")");
    return true;
  }
  LoadStation(shell, steps, line.EquipFile);
  if (!line.TestFile.empty()) LoadNamedTest(shell, steps, line.TestFile);
  return true;
}

}  // namespace hylden
