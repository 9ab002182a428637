#include "documents/TestSetup.h"

#include <filesystem>
#include <fstream>

#include "documents/DocumentFile.h"
#include "documents/TestSummary.h"
#include "shell/Shell.h"
#include "text/ExistingPath.h"

namespace hylden {

std::optional<StartFailure> CheckStart(const TestDefinition& test, const EquipRecord& equipment) {
  constexpr int kInstrumentTab = 0, kFactorTab = 1;
  const bool byPower = test.LevelsByPower(), byNetPower = test.LevelsBy(LevelingMethod::NetPower);
  // Net power takes both ports of one coupler at once; a meter split by band reads the forward port of each band.
  const bool dualChannel = equipment.Is(AmpConfig::DualFwdRev);
  const struct {
    bool missing;
    const char* text;
    int tab;
  } checks[] = {
      {equipment.SigGenFile.empty(), "A signal generator must be selected", kInstrumentTab},
      {test.MonitorProbe && equipment.MeterFile.empty(),
       "A meter device must be selected for\r\nmonitoring the induced level.", kInstrumentTab},
      {test.MonitorProbe && equipment.CableLossFile.empty(), "No cable loss file has been selected", kFactorTab},
      {byPower && equipment.PwrMtrFile.empty(), "A power meter must be selected for this test", kInstrumentTab},
      {byPower && equipment.FwdPortFile.empty(), "No forward coupler port file has been selected", kFactorTab},
      {byNetPower && !dualChannel, "A dual-channel power meter must be selected\r\nfor a net-power type test.",
       kInstrumentTab},
      {byNetPower && equipment.RevPortFile.empty(), "No reverse coupler port file has been selected", kFactorTab},
  };
  for (const auto& check : checks)
    if (check.missing) return StartFailure{check.text, check.tab};
  return CheckAmplifier(equipment);
}

std::optional<StartFailure> CheckStart(const TestDefinition& test, const Equip& equipment) {
  if (auto failure = CheckStart(test, equipment.Record)) return failure;
  return equipment.CheckDefinitions(test.MonitorProbe, test.LevelsByPower());
}

Done TestSetup::LoadDef(const std::string& path) {
  return LoadDocument("TestSetup.LoadDef", path, Definition, Saved, files_).map([&] {
    TestFileName = path;
    shell_.log.LogFile("Test file: " + path);
  });
}

Done TestSetup::NewFrom(const std::string& path) {
  const std::string calibration = Definition.CalInfoFile;
  return LoadDef(path).map([&] {
    TestFileName.clear();
    if (Definition.CalInfoFile.empty()) Definition.CalInfoFile = calibration;
  });
}

Done TestSetup::SaveDef(const std::string& path) {
  return SaveDocument("TestSetup.SaveDef", path, Definition, Saved, files_).map([&] {
    TestFileName = path;
    shell_.log.LogFile("Test file saved: " + path);
  });
}

TestDefinition TestSetup::AsRun() const {
  TestDefinition test = Definition;
  test.FreqList = test.FreqList && !ListUnused;
  return test;
}

std::string TestSetup::StringPrintTestSetup() const {
  return JoinLines(TestSummaryLines(AsRun(), calInfo_.Record, SummaryForm::Text));
}

Done TestSetup::PrintTestSetup(const TestDefinition& test) {
  return Trapped("TestSetup.PrintTestSetup", {}, [&] {
    PrintJob job;
    job.title = "Test Run Parameters";
    for (std::string& line : TestSummaryLines(test, calInfo_.Record, SummaryForm::Page))
      job.lines.push_back({std::move(line)});
    shell_.printer.Print(job);
  });
}

bool TestSetup::TestFileReadOnly() const {
  if (TestFileName.empty()) return false;
  namespace fs = std::filesystem;
  const fs::path path = ExistingPath(TestFileName);
  std::error_code failed;
  const fs::file_status status = fs::status(path, failed);
  if (failed || !fs::is_regular_file(status)) return false;
  constexpr fs::perms kAnyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((status.permissions() & kAnyWrite) == fs::perms::none) return true;
  return !std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).is_open();
}

}  // namespace hylden
