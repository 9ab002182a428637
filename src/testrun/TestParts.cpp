#include "testrun/TestParts.h"

#include <filesystem>

#include "documents/Documents.h"
#include "testrun/RunInputs.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

template <class... Numbers>
std::string LineOf(Numbers... numbers) {
  std::string line;
  ((line += ShortestText(double{numbers}) + " "), ...);
  return line + "\n";
}

std::string ContentOfRecord(const clsCalFile& record, const CalInfoRec& info) {
  std::string content = ContentOf(info);
  for (const CalPoint& p : record.Points()) content += LineOf(p.Freq, p.SigGenLevel, p.TestLevel, p.FwdPwr, p.RevPwr);
  return content;
}

std::string ContentOfSteps(const std::vector<PlanStep>& steps) {
  std::string content;
  for (const PlanStep& step : steps) content += LineOf(step.Freq, step.Dwell);
  return content;
}

}  // namespace

RunParts PartsOf(RunInputs& inputs, const Documents& documents, const Instruments& instruments) {
  const TestDefinition& test = documents.testSetup.Definition;
  const EquipRecord& equipment = documents.equip.Record;
  const std::string record = std::filesystem::path(test.CalInfoFile).replace_extension(".cal").string();
  RunParts parts = {
      PartOf(FileKind(test), documents.testSetup.TestFileName, ContentOf(test)),
      PartOf("calibration record", record, ContentOfRecord(inputs.Calibration, documents.calInfo.Record))};
  AddStation(parts, documents, instruments);
  parts.push_back(PartOf("cable loss file", equipment.CableLossFile, ContentOf(inputs.CableLoss)));
  parts.push_back(PartOf("probe factor file", equipment.ProbeFile, ContentOf(inputs.ProbeFactor)));
  parts.push_back(PartOf("forward port file", equipment.FwdPortFile, ContentOf(inputs.ForwardPort)));
  parts.push_back(PartOf("reverse port file", equipment.RevPortFile, ContentOf(inputs.ReversePort)));
  // Behind the definition it can differ by the list only.
  parts.push_back(PartOf("frequency list", test.FreqList ? test.ListFile : "", ContentOfSteps(inputs.Steps)));
  return parts;
}

}  // namespace hylden
