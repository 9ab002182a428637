#include "testrun/RunReport.h"

#include <vector>

#include "documents/Documents.h"
#include "documents/TestSummary.h"
#include "testrun/RunData.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

/// Where the run was continued, unless it ended before the row was there.
std::vector<std::string> SeamLines(const RunData& data) {
  std::vector<std::string> lines;
  for (const int seam : data.Seams()) {
    const auto row = static_cast<std::size_t>(seam);
    if (row > data.Entries().size()) continue;
    const double frequency = std::visit([](const auto& entry) { return entry.Freq; }, data.Entries()[row - 1]);
    lines.push_back("Note: The run ended early and was continued at " + Format(frequency, "#0.0#####") + " MHz (row " +
                    std::to_string(seam) + ").");
  }
  return lines;
}

}  // namespace

PrintJob RunReport(const RunData& data, bool thresholdsOnly) {
  PrintJob job{.title = "Test Run Data", .top = 5, .bottom = 90, .askForPrinter = true, .lines = {}};
  job.lines.push_back({std::string(kRunDataTitle), 16, true});
  job.lines.push_back({""});
  for (std::string& line : SeamLines(data)) job.lines.push_back({std::move(line)});
  for (std::string& line : RunHeaderLines(thresholdsOnly)) job.lines.push_back({std::move(line)});
  for (std::string& line : RunRowLines(data, thresholdsOnly)) job.lines.push_back({std::move(line)});
  return job;
}

PrintJob DetailedReport(const Documents& documents, const RunData& data) {
  PrintJob job = RunReport(data, false);
  job.lines.front().newPage = true;
  std::vector<PrintedLine> page;
  for (std::string& line : TestSummaryLines(documents.testSetup.AsRun(), documents.calInfo.Record, SummaryForm::Page))
    page.push_back({std::move(line)});
  job.lines.insert(job.lines.begin(), page.begin(), page.end());
  return job;
}

Done PrintRunReport(Printer& printer, const Documents& documents, const RunData& data, RunReportKind kind) {
  return Trapped("PrintRunData", {}, [&] {
    const bool detailed = kind == RunReportKind::Detailed;
    printer.Print(detailed ? DetailedReport(documents, data) : RunReport(data, kind == RunReportKind::Threshold));
  });
}

}  // namespace hylden
