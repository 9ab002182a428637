#include "testrun/RunFacts.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/TimeText.h"
#include "shell/Shell.h"
#include "shell/Version.h"
#include "testrun/RunInputs.h"
#include "text/ExistingPath.h"

namespace hylden {

namespace {

/// When a file was written last; empty where that can't be told.
std::string DateOf(const std::string& file) {
  std::error_code error;
  const auto written = std::filesystem::last_write_time(file, error);
  if (error) return {};
  const std::time_t seconds = std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(std::chrono::file_clock::to_sys(written)));
  std::tm local{};
  localtime_r(&seconds, &local);
  return TimeText({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec});
}

template <class Driver>
void Add(std::vector<RunInstrument>& instruments, const char* role, const Driver& driver) {
  if (driver.HasDefinition()) instruments.push_back({role, driver.InstrumentName(), driver.FileName()});
}

}  // namespace

RunInfo FactsOf(const Shell& shell, const Documents& documents, const Instruments& instruments,
                const RunInputs& inputs) {
  const TestSetup& test = documents.testSetup;
  RunInfo info;
  info.Program = VersionTitle();
  info.Notice = shell.runNotice;
  info.User = shell.user;
  info.Started = TimeText(shell.clock.Now());
  info.PlannedSteps = static_cast<int>(inputs.Steps.size());
  info.Test = {FullPath(test.TestFileName), test.AsRun()};
  info.Station = {FullPath(documents.equip.EquipFileName), documents.equip.Record};
  info.Calibration = {FullPath(test.Definition.CalInfoFile), documents.calInfo.Record};
  info.CalibrationDate = DateOf(DataFileOf(test.Definition.CalInfoFile));
  info.CalPoints = inputs.Calibration.Points();
  Add(info.Instruments, "Signal generator", instruments.sigGen);
  if (test.Definition.MonitorProbe) Add(info.Instruments, "Meter", instruments.meter);
  if (test.Definition.LevelsByPower()) Add(info.Instruments, "Power meter", instruments.pm);
  return info;
}

}  // namespace hylden
