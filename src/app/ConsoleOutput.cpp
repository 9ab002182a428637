#include "app/ConsoleOutput.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "documents/Documents.h"
#include "documents/SaveCal.h"
#include "testrun/RunInfo.h"
#include "text/ExistingPath.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

void Append(std::vector<std::string>& files, std::vector<std::string> more) {
  files.insert(files.end(), more.begin(), more.end());
}

bool Exists(const std::string& file) {
  std::error_code ignored;
  return fs::exists(SavePath(file), ignored);
}

/// The name with a number before its ending.
std::string Numbered(const std::string& name, int number) {
  const std::size_t folder = name.find_last_of("/\\"), dot = name.rfind('.');
  const bool ends = dot != std::string::npos && (folder == std::string::npos || dot > folder + 1);
  return std::string(name).insert(ends ? dot : name.size(), "-" + std::to_string(number));
}

/// Whether two names lead to one file, which need not be there yet.
bool IsSameFile(const std::string& saved, const std::string& other) {
  if (other.empty()) return false;
  const fs::path one = SavePath(saved), two = ExistingPath(other);
  std::error_code missing, unknown;
  if (fs::equivalent(one, two, missing)) return true;
  return fs::weakly_canonical(one, unknown) == fs::weakly_canonical(two, unknown) && !unknown;
}

}  // namespace

std::optional<std::string> FirstReplaced(const std::vector<std::string>& saved,
                                         const std::vector<std::string>& others) {
  for (const std::string& other : others)
    if (std::ranges::any_of(saved, [&](const std::string& file) { return IsSameFile(file, other); })) return other;
  return std::nullopt;
}

std::vector<std::string> FilesOfTheRun(const RunOptions& options, const Documents& documents,
                                       const std::string& programDirectory) {
  const EquipRecord& e = documents.equip.Record;
  const TestDefinition& test = documents.testSetup.Definition;
  const CalSetupRecord& setup = documents.calSetup.Record;
  std::vector<std::string> files = {options.EquipmentFile, options.BenchFile, e.SigGenFile,   e.MeterFile, e.PwrMtrFile,
                                    e.FwdPortFile,         e.RevPortFile,     e.MaxPowerFile, e.ProbeFile};
  switch (options.What) {
    case RunOptions::Job::Test:
      Append(files, {options.TestFile, test.ListFile, test.CalInfoFile,
                     fs::path(test.CalInfoFile).replace_extension(".cal").string(), e.CableLossFile});
      break;
    case RunOptions::Job::Calibration:
      Append(files, {options.SetupFile, setup.ListFile, setup.LimitFile, e.CableLossFile});
      break;
    case RunOptions::Job::Recovery:
    case RunOptions::Job::Export:
      break;
    case RunOptions::Job::CableLoss:  // it makes the station's cable loss table afresh
      Append(files, {options.Cable["lblListFile"]});
      break;
    case RunOptions::Job::BusInfo:
      break;
  }
  Append(files, {programDirectory + "/Hylden.ini", programDirectory + "/times.txt", "runlog.hyl"});
  return files;
}

ConsoleOutput::ConsoleOutput(const RunOptions& options) : job_(options.What), files_(FilesNamed(options.OutputFile)) {}

std::vector<std::string> ConsoleOutput::FilesNamed(const std::string& name) const {
  std::vector files = {name};
  if (job_ == RunOptions::Job::Test) files.push_back(RunInfoFile(name));
  if (job_ == RunOptions::Job::Calibration)
    if (auto info = InfoFileBeside(name)) files.push_back(std::move(*info));
  return files;
}

std::optional<ConsoleOutput::State> ConsoleOutput::StateOf(const std::string& file) {
  std::error_code failed;
  State state{fs::file_size(SavePath(file), failed), {}};
  if (!failed) state.Changed = fs::last_write_time(SavePath(file), failed);
  if (failed) return std::nullopt;
  return state;
}

void ConsoleOutput::Note() {
  noted_.clear();
  for (const std::string& file : files_) noted_.push_back(StateOf(file));
}

std::vector<std::string> ConsoleOutput::Appeared() const {
  std::vector<std::string> appeared;
  for (std::size_t i = 0; i < noted_.size(); ++i) {
    const auto now = StateOf(files_[i]);
    if (now && now != noted_[i]) appeared.push_back(files_[i]);
  }
  return appeared;
}

void ConsoleOutput::MoveAside() {
  const std::string named = files_.front();
  for (int number = 2; std::any_of(files_.begin(), files_.end(), Exists); ++number)
    files_ = FilesNamed(Numbered(named, number));
  noted_.clear();
  aside_ = true;
}

}  // namespace hylden
