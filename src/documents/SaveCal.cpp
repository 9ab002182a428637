#include <algorithm>

#include "documents/CalInfo.h"
#include "documents/clsCalFile.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

constexpr std::string_view kDataEnding = ".cal";
constexpr std::size_t kColumns = 5;

bool HasDataEnding(const std::string& name) {
  if (name.size() < kDataEnding.size()) return false;
  return std::equal(kDataEnding.begin(), kDataEnding.end(), name.end() - static_cast<int>(kDataEnding.size()),
                    [](char wanted, char c) { return (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) == wanted; });
}

}  // namespace

double FrequencyOf(const std::vector<std::string>& row) {
  return row.empty() ? 0 : LeadingNumber(row.front());
}

std::string CalDataText(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::string> lines;
  for (const std::vector<std::string>& row : rows) {
    std::string line;
    for (std::size_t column = 0; column < kColumns; ++column) line += (column < row.size() ? row[column] : "") + ",";
    lines.push_back(std::move(line));
  }
  return JoinLines(lines);
}

std::optional<std::string> InfoFileBeside(const std::string& dataFileName) {
  if (!HasDataEnding(dataFileName)) return std::nullopt;
  return dataFileName.substr(0, dataFileName.size() - kDataEnding.size()) + ".hyinfo";
}

bool SaveCal(Shell& shell, const std::string& dataFileName, const std::vector<std::vector<std::string>>& rows,
             const CalInfoRec& info) {
  if (rows.size() < 2) {
    shell.dialogs.Tell("No data to save");
    return false;
  }
  const std::optional<std::string> infoFileName = InfoFileBeside(dataFileName);
  // Under another name the record could be written, but not found again.
  if (!infoFileName) {
    shell.dialogs.Tell("Bad filename for calibration file: " + dataFileName);
    return false;
  }
  // A list may be visited in any order; a record is looked up in rising frequency.
  std::vector<std::vector<std::string>> rising = rows;
  std::stable_sort(rising.begin(), rising.end(),
                   [](const auto& a, const auto& b) { return FrequencyOf(a) < FrequencyOf(b); });
  const std::string* current = &dataFileName;
  try {
    // The two belong together: neither is replaced unless both can be written.
    FileReplacement data(dataFileName, CalDataText(rising));
    current = &*infoFileName;
    FileReplacement description(*infoFileName, RecordText(info, true));
    current = &dataFileName;
    data.Place();
    current = &*infoFileName;
    description.Place();
  } catch (const std::exception& error) {
    shell.ReportError(error, "frmRunCal.SaveCal", *current);
    return false;
  }
  return true;
}

}  // namespace hylden
