#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hylden {

class Station;

/// What a command line asks for; empty where it names nothing.
struct CommandLine {
  std::string EquipFile;
  std::string TestFile;
  std::vector<std::string> RunFiles;  ///< run data to be looked at
  std::vector<std::string> LogLines;  ///< run log entries of the switches, in order
  bool Ok = true;                     ///< false after a piece that is no switch; what follows it was not read
};

/// Reads a whole command line: the switches "/e:" (equipment file), "/t:" (test definition) and "/r:" (run data), each
/// with its path in one pair of double quotes. Switches are case-sensitive, paths are taken unchanged; of the first two
/// the last one of a kind counts.
CommandLine ParseCommandLine(std::string_view text);

/// The whole command line of the arguments that a shell has taken apart: an argument that holds no quote of its own
/// gets the pair that the shell has removed.
std::string JoinArguments(const std::vector<std::string>& arguments);

/// The switch that opens a file, by its kind, for an argument that is only a file's name: "station.eqp" becomes
/// "/e:station.eqp". Anything else comes back as it is.
std::string AsSwitch(const std::string& argument);

/// The same line for a program with another working directory; one that can't be understood comes back as it is.
std::string WithWholePaths(const std::string& commandLine);
/// What is wrong with the arguments of the desktop program, in a line for each: an option that it does not have, a file
/// of a kind that it does not open, or one that is not there. Switches are left to StartUp.
std::string ArgumentFaults(const std::vector<std::string>& arguments);

/// What the program shows first.
enum class Opening { MainMenu, TestDefinition };

/// From the command line to the first window: loads the equipment named there or in the settings and, when a test was
/// named, that test with its calibration info, to go straight to it. What fails to load is told, and left out.
/// @param commandLine  as JoinArguments puts it together; may be empty
Opening StartUp(Station& station, const std::string& commandLine);

}  // namespace hylden
