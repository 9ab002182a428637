#pragma once

#include <string>

#include "shell/Failure.h"
#include "testrun/ReportChoices.h"
#include "testrun/RunReportText.h"

namespace hylden {

/// The bytes of a report as PDF (PDF/A-1b), with its fonts; curves are lines, not pixels. It needs the application
/// object, but no screen.
std::string ReportPdf(const RunReportText& report, ReportPaper paper);

/// Writes the report of a run; a failure leaves an old file whole.
/// @param choices  all of them are followed
Done FileReport(const OpenedRun& run, const ReportChoices& choices, const std::string& path);

}  // namespace hylden
