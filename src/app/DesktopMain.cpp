#include <cstdio>
#include <string>
#include <vector>

#include "app/DesktopApplication.h"
#include "app/DesktopProgram.h"
#include "app/StartUp.h"
#include "platform/native/StandardStreams.h"
#include "shell/Version.h"

namespace {

constexpr const char* kHelp =
    "Usage: hylden [FILE.eqp] [FILE.tst]\n\n"
    "Conducted RF immunity testing: station, calibration and test in windows.\n\n"
    "  FILE.eqp     begin with this station (also \"/e:FILE\")\n"
    "  FILE.tst     go straight to this test (also \"/t:FILE\")\n"
    "  --help       print this and exit\n"
    "  --version    print the version and exit\n\n"
    "Without windows, hylden-run runs tests and calibrations; hylden-run --help tells how.\n";

/// Whether the arguments were a question that needs no window; then it has been answered.
bool Answered(const std::vector<std::string>& arguments) {
  if (arguments.size() != 1) return false;
  if (arguments.front() == "--help" || arguments.front() == "-h") return std::fputs(kHelp, stdout), true;
  if (arguments.front() == "--version") return std::puts(hylden::VersionTitle().c_str()), true;
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  hylden::KeepStandardStreams();
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (Answered(arguments)) return 0;
  hylden::DesktopApplication application(argc, argv);
  for (std::string& argument : arguments) argument = hylden::AsSwitch(argument);
  return hylden::RunDesktop(application, arguments);
}
