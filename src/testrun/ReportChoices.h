#pragma once

#include "testrun/RunInfo.h"

namespace hylden {

class INISettings;

enum class ReportPaper { A4, Letter };

/// What was chosen for the last report: the paper, and whether all steps were wanted.
struct ReportChoices {
  ReportPaper Paper = ReportPaper::A4;
  bool AllSteps = false;
};
ReportChoices LoadReportChoices(INISettings& settings);
void SaveReportChoices(INISettings& settings, const ReportChoices& choices);

/// The particulars of a run, where it has none those that the settings remember of the last report. Remarks are of one
/// run only.
RunParticulars ParticularsToOffer(INISettings& settings, RunParticulars ofRun);
/// What is too long for the settings is not remembered.
void RememberParticulars(INISettings& settings, const RunParticulars& particulars);

}  // namespace hylden
