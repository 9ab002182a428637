#include "documents/SaveCal.h"

#include <algorithm>
#include <iterator>

#include "documents/CalInfo.h"
#include "documents/CalSetup.h"
#include "text/Case.h"
#include "text/FilePair.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

constexpr std::string_view kDataEnding = ".cal";
constexpr const char* kNotRecorded = "na";

bool HasDataEnding(const std::string& name) {
  return LowerCase(name).ends_with(kDataEnding);
}

std::string PowerText(const std::optional<double>& powerDbm) {
  return powerDbm ? Format(*powerDbm, "##0.00") : kNotRecorded;
}

bool IsLower(const CalRow& a, const CalRow& b) {
  return a.Freq < b.Freq;
}

/// As the data file has it.
double RecordedFreq(const CalRow& row) {
  return LeadingNumber(CellsOf(row).front());
}

}  // namespace

std::array<std::string, 5> CellsOf(const CalRow& row) {
  return {Format(row.Freq, "0.0#####"), Format(row.SigGenLevel, "###0.000"), Format(row.TestLevel, "##0.00"),
          PowerText(row.FwdPwr), row.Complete ? PowerText(row.RevPwr) : std::string()};
}

CalRows CompleteRows(const CalRows& rows) {
  CalRows complete;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(complete), [](const CalRow& row) { return row.Complete; });
  return complete;
}

std::string RangeOf(const CalRows& rows) {
  if (rows.empty()) return {};
  const auto [lowest, highest] = std::minmax_element(rows.begin(), rows.end(), IsLower);
  return FreqRangeText(RecordedFreq(*lowest), RecordedFreq(*highest));
}

CalInfoRec InfoOfRows(CalInfoRec planned, const CalRows& rows, std::size_t plannedRows) {
  if (rows.size() < plannedRows) planned.FreqRange = RangeOf(rows);
  return planned;
}

std::string CalDataText(const CalRows& rows) {
  std::vector<std::string> lines;
  for (const CalRow& row : rows) {
    std::string line;
    for (const std::string& cell : CellsOf(row)) line += cell + ",";
    lines.push_back(std::move(line));
  }
  return JoinLines(lines);
}

std::optional<std::string> InfoFileBeside(const std::string& dataFileName) {
  if (!HasDataEnding(dataFileName)) return std::nullopt;
  return dataFileName.substr(0, dataFileName.size() - kDataEnding.size()) + ".hyinfo";
}

Done SaveCal(const std::string& dataFileName, const CalRows& rows, const CalInfoRec& info) {
  if (rows.size() < 2) return Because("No data to save");
  const std::optional<std::string> infoFileName = InfoFileBeside(dataFileName);
  // Under another name the record could be written, but not found again.
  if (!infoFileName) return Because("Bad filename for calibration file: " + dataFileName);
  // A list may be visited in any order; a record is looked up in rising frequency.
  CalRows rising = rows;
  std::stable_sort(rising.begin(), rising.end(), IsLower);
  // Half a new record would replay its levels under the amplifier of the old one. PlacePair wants this order.
  std::optional<FileReplacement> data, description;
  const auto write = [](const std::string& name, const auto& operation) {
    return Trapped("frmRunCal.SaveCal", name, operation);
  };
  return write(dataFileName, [&] { SettlePair(dataFileName, *infoFileName); })
      .and_then([&] { return write(dataFileName, [&] { data.emplace(dataFileName, CalDataText(rising)); }); })
      .and_then(
          [&] { return write(*infoFileName, [&] { description.emplace(*infoFileName, RecordText(info, true)); }); })
      .and_then([&] { return write(dataFileName, [&] { PlacePair(*data, *description); }); });
}

}  // namespace hylden
