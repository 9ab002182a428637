#pragma once

#include "platform/Printer.h"

namespace hylden {

class RunData;
class Shell;
struct Documents;

/// The printed reports of a test run.
enum class RunReportKind { Brief, Detailed, Threshold };

/// The run data as the file has them: the brief report, or the thresholds only.
PrintJob RunReport(const RunData& data, bool thresholdsOnly);

/// The detailed report: the page of test run parameters, then the run data on pages of their own.
PrintJob DetailedReport(const Documents& documents, const RunData& data);

/// A print command of the run form's File menu; failures are reported here.
void PrintRunReport(Shell& shell, const Documents& documents, const RunData& data, RunReportKind kind);

}  // namespace hylden
