#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "app/DesktopApplication.h"
#include "app/DesktopProgram.h"
#include "app/DesktopReport.h"
#include "app/StartUp.h"
#include "platform/native/StandardStreams.h"
#include "shell/Version.h"

namespace {

constexpr const char* kHelp =
    "Usage: hylden [OPTION] [FILE...]\n"
    "       hylden --report FILE.run --pdf OUT.pdf [--all-steps] [--paper a4|letter] [--yes]\n\n"
    "Conducted RF immunity testing: station, calibration and test in windows.\n\n"
    "  FILE.eqp     begin with this station (also \"/e:FILE\")\n"
    "  FILE.tst     go straight to this test (also \"/t:FILE\")\n"
    "  FILE.run     show this saved run (also \"/r:FILE\")\n"
    "  --report FILE.run  make the test report of saved run data, without a window or a screen:\n"
    "    --pdf OUT.pdf    the file for it; one that is there is replaced with --yes only\n"
    "    --all-steps      with a table of all steps\n"
    "    --paper PAPER    a4 or letter; otherwise as it was chosen last\n"
    "  --help       print this and exit\n"
    "  --version    print the version and exit\n\n"
    "Without windows, hylden-run runs tests and calibrations; hylden-run --help tells how.\n";

constexpr int kUsage = 2;

int PrintHelp() {
  return std::fputs(kHelp, stdout) < 0 ? 1 : 0;
}
int PrintVersion() {
  return std::puts(hylden::VersionTitle().c_str()) < 0 ? 1 : 0;
}

/// What the terminal gets without a window.
constexpr struct {
  const char* Option;
  int (*Answer)();
} kAnswers[] = {{"--help", PrintHelp}, {"-h", PrintHelp}, {"--version", PrintVersion}};

bool IsSet(const char* name) {
  const char* const value = std::getenv(name);
  return value && *value;
}
bool HasScreen() {
  return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY");
}
/// Whether somebody can read what is printed; a window tells it otherwise.
bool AtTerminal() {
  return isatty(STDERR_FILENO) || !HasScreen();
}

/// The exit status of what needs no window.
std::optional<int> AnsweredOnTerminal(const std::vector<std::string>& arguments) {
  for (const auto& answer : kAnswers)
    if (std::find(arguments.begin(), arguments.end(), answer.Option) != arguments.end()) return answer.Answer();
  const std::string faults = hylden::ArgumentFaults(arguments);
  if (faults.empty()) return std::nullopt;
  std::fputs((faults + "hylden --help tells what it takes.\n").c_str(), stderr);
  return AtTerminal() ? std::optional(kUsage) : std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  hylden::KeepStandardStreams();
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (const auto status = hylden::AnswerReport(arguments)) return *status;
  if (const auto status = AnsweredOnTerminal(arguments)) return *status;
  // Qt would abort; a platform that was asked for may have no need of one.
  if (!HasScreen() && !IsSet("QT_QPA_PLATFORM")) {
    std::fputs("hylden needs a screen; hylden-run runs tests and calibrations without one.\n", stderr);
    return 1;
  }
  hylden::DesktopApplication application(argc, argv);
  for (std::string& argument : arguments) argument = hylden::AsSwitch(argument);
  return hylden::RunDesktop(application, arguments);
}
