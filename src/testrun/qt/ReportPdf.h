#pragma once

#include <string>

#include "shell/Failure.h"
#include "testrun/ReportChoices.h"
#include "testrun/RunReportText.h"

namespace hylden {

/// The bytes of a report as PDF (PDF/A-1b), with its fonts; curves are lines, not pixels. It needs the application
/// object, but no screen.
std::string ReportPdf(const RunReportText& report, ReportPaper paper);

/// Writes a report; a failure leaves an old file whole.
Done FileReport(const RunReportText& report, ReportPaper paper, const std::string& path);

}  // namespace hylden
