#include "testrun/RunReport.h"

#include <vector>

#include "documents/Documents.h"
#include "documents/TestSummary.h"
#include "testrun/RunData.h"

namespace hylden {

PrintJob RunReport(const RunData& data, bool thresholdsOnly) {
  PrintJob job{.title = "Test Run Data", .top = 5, .bottom = 90, .askForPrinter = true, .lines = {}};
  job.lines.push_back({std::string(kRunDataTitle), 16, true});
  job.lines.push_back({""});
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
