#include "documents/TestSetup.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include "documents/TestSummary.h"
#include "shell/Shell.h"
#include "text/ExistingPath.h"
#include "text/RecordFile.h"

namespace hylden {

bool TestSetup::LoadDef(const std::string& path) {
  try {
    TestDefinition read;
    LoadRecord(path, read);
    FilesBeside files(path);
    FindFiles(read, files);
    Definition = std::move(read);
    files_ = std::move(files);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "TestSetup.LoadDef", path);
    return false;
  }
  Saved = Definition;
  TestFileName = path;
  shell_.log.LogFile("Test file: " + path);
  return true;
}

bool TestSetup::SaveDef(const std::string& path) {
  try {
    SaveRecord(path, WithFileNames(Definition, files_, path));
  } catch (const std::exception& error) {
    shell_.ReportError(error, "TestSetup.SaveDef", path);
    return false;
  }
  Saved = Definition;
  TestFileName = path;
  shell_.log.LogFile("Test file saved: " + path);
  return true;
}

TestDefinition TestSetup::AsRun() const {
  TestDefinition test = Definition;
  test.FreqList = test.FreqList && !ListUnused;
  return test;
}

std::string TestSetup::StringPrintTestSetup() {
  try {
    return JoinLines(TestSummaryLines(AsRun(), calInfo_.Record, SummaryForm::Text));
  } catch (const std::exception& error) {
    shell_.ReportError(error, "TestSetup.StringPrintTestSetup");
    shell_.dialogs.Tell("Error in TestSetup.StringPrintTestSetup");
    return {};
  }
}

void TestSetup::PrintTestSetup(const TestDefinition& test) {
  try {
    PrintJob job;
    job.title = "Test Run Parameters";
    for (std::string& line : TestSummaryLines(test, calInfo_.Record, SummaryForm::Page))
      job.lines.push_back({std::move(line)});
    shell_.printer.Print(job);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "TestSetup.PrintTestSetup");
  }
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
