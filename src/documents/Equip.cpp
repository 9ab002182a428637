#include "documents/Equip.h"

#include "documents/DocumentFile.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"

namespace hylden {

Done Equip::LoadDef(const std::string& path) {
  return LoadDocument("Equip.LoadDef", path, Record, Saved, files_).map([&] {
    shell_.log.LogFile("Equip file: " + path);
  });
}

Done Equip::SaveDef(const std::string& path) {
  return SaveDocument("Equip.SaveDef", path, Record, Saved, files_).map([&] {
    shell_.log.LogFile("Equip file saved: " + path);
  });
}

std::optional<StartFailure> Equip::CheckDefinitions(bool meter, bool powerMeter) const {
  const auto missing = [](const auto& driver, const std::string& file) -> std::optional<StartFailure> {
    if (driver.HasDefinition()) return std::nullopt;
    return StartFailure{"The " + std::string(FileKind(driver.Definition())) + " could not be loaded:\r\n" + file, 0};
  };
  if (auto failure = missing(instruments_.sigGen, Record.SigGenFile)) return failure;
  if (meter)
    if (auto failure = missing(instruments_.meter, Record.MeterFile)) return failure;
  return powerMeter ? missing(instruments_.pm, Record.PwrMtrFile) : std::nullopt;
}

std::optional<EntryFailure> Equip::TakeEntries(const FormEntries& entries) {
  return hylden::TakeEntries(entries, Record);
}

}  // namespace hylden
