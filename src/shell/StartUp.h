#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hylden {

class Shell;

/// What a second instance on one computer says.
inline constexpr const char* kAnotherInstanceText = "This application is already running on this computer";

/// "Hylden 1.1": the caption of the main menu.
std::string VersionTitle();

/// The help file's full path in the program directory.
std::string HelpFilePath(std::string_view programDirectory);

/// What a command line asks for; empty where it names nothing.
struct CommandLine {
  std::string EquipFile;
  std::string TestFile;
  std::vector<std::string> LogLines;  ///< run log entries of the switches, in order
  bool Ok = true;                     ///< false after a piece that is no switch; what follows it was not read
};

/// Reads a whole command line: the switches "/e:" (equipment file) and "/t:" (test definition), each with its path in
/// one pair of double quotes. Switches are case-sensitive, paths are taken unchanged, the last one of a kind counts.
CommandLine ParseCommandLine(std::string_view text);

/// The whole command line of the arguments that a shell has taken apart: an argument that holds no quote of its own
/// gets the pair that the shell has removed.
std::string JoinArguments(const std::vector<std::string>& arguments);

/// What start-up asks of the program around it. The loaders report their own failures and log their own successes.
class StartUpSteps {
 public:
  virtual ~StartUpSteps() = default;
  virtual bool AnotherInstanceRuns() = 0;
  virtual void SetTitle(const std::string& title) = 0;
  virtual void SetHelpFile(const std::string& path) = 0;
  virtual bool LoadEquipment(const std::string& path) = 0;
  /// Hands the loaded equipment over to the drivers.
  virtual void ApplyEquipment() = 0;
  virtual bool LoadTest(const std::string& path) = 0;
  /// The calibration info file that the loaded test names.
  virtual std::string CalInfoFile() = 0;
  virtual bool LoadCalInfo(const std::string& path) = 0;
  virtual void OpenTestDefinition() = 0;
};

/// From the program's start to its main menu: refuses a second instance, sets title and help file, reads the command
/// line, loads the equipment named there or in the settings and, when a test was named, that test with its
/// calibration info, and goes straight to it.
/// @param commandLine  as JoinArguments puts it together; may be empty
/// @return false when the program has to end at once; the main menu is shown otherwise, whatever failed to load
bool StartUp(Shell& shell, StartUpSteps& steps, const std::string& commandLine);

}  // namespace hylden
