#pragma once

#include "platform/Printer.h"
#include "shell/Failure.h"

namespace hylden {

class RunData;
struct Documents;

/// The printed reports of a test run.
enum class RunReportKind { Brief, Detailed, Threshold };

/// The run data as the file has them: the brief report, or the thresholds only.
PrintJob RunReport(const RunData& data, bool thresholdsOnly);

/// The detailed report: the page of test run parameters, then the run data on pages of their own.
PrintJob DetailedReport(const Documents& documents, const RunData& data);

/// Prints a report.
Done PrintRunReport(Printer& printer, const Documents& documents, const RunData& data, RunReportKind kind);

}  // namespace hylden
