#include "testrun/ReportChoices.h"

#include <string>
#include <utility>
#include <vector>

#include "shell/INISettings.h"

namespace hylden {

namespace {

constexpr const char *kSection = "Report", *kPaper = "Paper", *kLetter = "Letter", *kAllSteps = "AllSteps";

/// The particulars that are remembered, by their keys.
std::vector<std::pair<const char*, std::string*>> Remembered(RunParticulars& p) {
  return {{"Lab", &p.Lab},
          {"Customer", &p.Customer},
          {"Product", &p.Product},
          {"Operator", &p.Operator},
          {"Ambient", &p.Ambient}};
}

}  // namespace

ReportChoices LoadReportChoices(INISettings& settings) {
  return {settings.Get(kSection, kPaper, {}) == kLetter ? ReportPaper::Letter : ReportPaper::A4,
          settings.Get(kSection, kAllSteps, "0") == "1"};
}

void SaveReportChoices(INISettings& settings, const ReportChoices& choices) {
  settings.SaveAll(kSection, {{kPaper, choices.Paper == ReportPaper::Letter ? kLetter : "A4"},
                              {kAllSteps, choices.AllSteps ? "1" : "0"}});
}

RunParticulars ParticularsToOffer(INISettings& settings, RunParticulars ofRun) {
  for (const auto& [key, value] : Remembered(ofRun))
    if (value->empty()) *value = settings.Get(kSection, key, {});
  return ofRun;
}

void RememberParticulars(INISettings& settings, const RunParticulars& particulars) {
  RunParticulars copy = particulars;
  std::vector<std::pair<std::string, std::string>> values;
  for (const auto& [key, value] : Remembered(copy))
    if (clsSetting::Fits(*value)) values.emplace_back(key, *value);
  settings.SaveAll(kSection, values);
}

}  // namespace hylden
