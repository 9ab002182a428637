#include <filesystem>
#include <iostream>
#include <system_error>

#include "app/ConsoleJobs.h"
#include "app/ConsoleOutput.h"
#include "platform/console/ConsoleDialogs.h"
#include "testrun/RunExport.h"
#include "testrun/RunReportText.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

void Tell(const Failure& failure) {
  for (const Message& box : failure.Boxes()) std::cerr << ForTerminal(box.text) << '\n';
}

/// Whether the table may be written: it replaces nothing that is wanted. @return false after a message
bool MayWrite(const RunOptions& options) {
  if (const auto replaced = FirstReplaced({options.CsvFile}, {options.RunFile, RunInfoFile(options.RunFile)})) {
    std::cerr << "--csv would replace what is exported: " << *replaced << '\n';
    return false;
  }
  std::error_code ignored;
  if (options.Yes || !std::filesystem::exists(SavePath(options.CsvFile), ignored)) return true;
  std::cerr << options.CsvFile << " exists; with --yes it is replaced.\n";
  return false;
}

}  // namespace

ExitState ExportRunData(const RunOptions& options) {
  const Result<OpenedRun> run = OpenRun(options.RunFile);
  if (!run) return Tell(run.error()), ExitState::Failed;
  for (const std::string& trouble : run->Run.Troubles) std::cerr << options.RunFile << ": " << trouble << '\n';
  if (!run->Beside.Trouble.empty()) std::cerr << run->Beside.Trouble << '\n';
  if (!MayWrite(options)) return ExitState::Failed;
  const auto times = run->Beside.Info ? run->Beside.Info->RowTimes : std::map<int, std::string>();
  const DecimalSign sign = options.DecimalComma ? DecimalSign::Comma : DecimalSign::Point;
  if (const Done written = FileRunCsv(run->Run.Data, times, sign, options.CsvFile); !written)
    return Tell(written.error()), ExitState::Failed;
  std::cout << run->Run.Data.Entries().size() << " rows saved in " << options.CsvFile << '\n';
  return run->Run.Troubles.empty() ? ExitState::Finished : ExitState::Failed;
}

}  // namespace hylden
