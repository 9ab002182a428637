#include "fuzz/Fuzzed.h"
#include "shell/clsSetting.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const std::string& file = FileOf(data, size, "Hylden.ini");
  clsSetting settings(file.substr(0, file.rfind('/')), "hylden");
  settings.Init("Hylden", 1);
  for (const std::string& section : settings.GetSectionNames()) (void)settings.GetSettingAll(section);
  (void)settings.GetSettingInt("System", "LogToFile", 0);
  if (settings.SaveSettingStr("Fuzz", "Key", "value")) Demand(settings.GetSettingStr("Fuzz", "Key", "") == "value");
  return 0;
}
