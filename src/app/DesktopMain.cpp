#include "app/DesktopApplication.h"
#include "app/DesktopProgram.h"
#include "platform/native/StandardStreams.h"

int main(int argc, char** argv) {
  hylden::KeepStandardStreams();
  hylden::DesktopApplication application(argc, argv);
  return hylden::RunDesktop(application, std::vector<std::string>(argv + 1, argv + argc));
}
