#include "documents/clsCalFile.h"

#include <algorithm>
#include <utility>

#include "measure/Conversions.h"
#include "text/Case.h"
#include "text/ExistingPath.h"
#include "text/FilePair.h"
#include "text/LinePlace.h"
#include "text/Numbers.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr std::string_view kInfoEnding = ".hyinfo";
constexpr float kMissing = static_cast<float>(kNoValue);

std::vector<std::string_view> SplitAtCommas(std::string_view line) {
  std::vector<std::string_view> pieces;
  for (std::size_t comma; (comma = line.find(',')) != std::string_view::npos; line.remove_prefix(comma + 1))
    pieces.push_back(line.substr(0, comma));
  pieces.push_back(line);
  return pieces;
}

/// A value between two points. A power that one of them lacks is unknown between them, too.
float Between(const CalPoint& a, float valueA, const CalPoint& b, float valueB, double frequency, CalColumn column) {
  if (column == CalColumn::TestLevel) return Interpolate(a.Freq, valueA, b.Freq, valueB, frequency, FreqScale::Log);
  const bool isPower = column == CalColumn::FwdPwr || column == CalColumn::RevPwr;
  if (isPower && (IsMissing(static_cast<double>(valueA)) || IsMissing(static_cast<double>(valueB)))) return kMissing;
  return Interpolate(a.Freq, valueA, b.Freq, valueB, frequency, FreqScale::Linear);
}

float ValueOf(const CalPoint& point, CalColumn column) {
  switch (column) {
    case CalColumn::SigGenLevel:
      return point.SigGenLevel;
    case CalColumn::TestLevel:
      return point.TestLevel;
    case CalColumn::FwdPwr:
      return point.FwdPwr;
    case CalColumn::RevPwr:
      return point.RevPwr;
  }
  return kMissing;
}

/// Older records were written in the order of a list, which may fall.
void Sort(std::vector<CalPoint>& points) {
  std::stable_sort(points.begin(), points.end(), [](const CalPoint& a, const CalPoint& b) { return a.Freq < b.Freq; });
}

}  // namespace

std::string DataFileOf(std::string_view infoFile) {
  return std::string(infoFile.substr(0, infoFile.size() - kInfoEnding.size() + 1)) + "cal";
}

void SettleRecord(const std::string& infoFile) {
  if (LowerCase(infoFile).ends_with(kInfoEnding))
    SettlePair(ExistingPath(DataFileOf(infoFile)), ExistingPath(infoFile));
}

std::optional<CalPoint> ParseCalLine(std::string_view line) {
  const std::vector<std::string_view> pieces = SplitAtCommas(line);
  if (pieces.size() < 5) return std::nullopt;
  const auto isNumber = [](std::string_view piece) { return IsNumeric(piece); };
  if (!std::all_of(pieces.begin(), pieces.begin() + 3, isNumber)) return std::nullopt;
  // A sixth number shows that the commas stand for decimal points; somebody's note does no harm.
  if (std::any_of(pieces.begin() + 5, pieces.end(), isNumber)) return std::nullopt;
  try {
    CalPoint point{ToDouble(pieces[0]), ToSingle(pieces[1]), ToSingle(pieces[2]), kMissing, kMissing};
    if (IsNumeric(pieces[3])) point.FwdPwr = ToSingle(pieces[3]);
    if (IsNumeric(pieces[4])) point.RevPwr = ToSingle(pieces[4]);
    return point;
  } catch (const RuntimeError&) {  // too large a number
    return std::nullopt;
  }
}

clsCalFile::clsCalFile(std::vector<CalPoint> points) : points_(std::move(points)) {
  Sort(points_);
}

double clsCalFile::GetStartFreq() const {
  return points_.empty() ? kNoValue : points_.front().Freq;
}

double clsCalFile::GetStopFreq() const {
  return points_.empty() ? kNoValue : points_.back().Freq;
}

int clsCalFile::GetNumSteps() const {
  return points_.empty() ? 0 : static_cast<int>(points_.size()) - 1;
}

float clsCalFile::GetSigGen(double frequency) {
  return Value(frequency, CalColumn::SigGenLevel);
}

float clsCalFile::GetTestLevel(double frequency) {
  return Value(frequency, CalColumn::TestLevel);
}

float clsCalFile::GetFwdPwr(double frequency) {
  return Value(frequency, CalColumn::FwdPwr);
}

float clsCalFile::GetRevPwr(double frequency) {
  return Value(frequency, CalColumn::RevPwr);
}

float NetPwrOf(float forwardDbm, float reverseDbm) {
  const auto forward = static_cast<double>(forwardDbm), reverse = static_cast<double>(reverseDbm);
  if (IsMissing(forward) || IsMissing(reverse)) return kMissing;
  try {
    return static_cast<float>(
        Conversions::WattsToDbm(Conversions::DbmToWatts(forward) - Conversions::DbmToWatts(reverse)));
  } catch (const RuntimeError&) {  // a power that no watts can tell
    return kMissing;
  }
}

float clsCalFile::GetNetPwr(double frequency) {
  return NetPwrOf(GetFwdPwr(frequency), GetRevPwr(frequency));
}

Done clsCalFile::LoadFile(const std::string& infoFileName) {
  if (infoFileName.empty()) return Because();
  const std::string infoFile = LowerCase(infoFileName);
  if (!infoFile.ends_with(kInfoEnding)) return Because("Bad filename for calibration file: " + infoFile);
  const std::string dataFile = DataFileOf(infoFile);
  // Two records may differ in case only: the data file is looked for in the spelling of its info file first.
  return Trapped("clsCalFile.LoadFile", dataFile, [&] {
    SettleRecord(infoFileName);
    return ReadPoints(LineReader(ReadTextFile(DataFileOf(infoFileName))), dataFile);
  });
}

Done clsCalFile::ReadPoints(LineReader lines, const std::string& dataFile) {
  for (std::size_t number = 1; number == 1 || !lines.AtEnd(); ++number) {
    const std::string_view line = lines.AtEnd() ? std::string_view() : lines.NextLine();
    if (number == 1 && lines.AtEnd()) return Because("Unexpected end of file in " + dataFile);
    if (line.empty() && lines.AtEnd()) break;  // an editor's last touch
    const std::optional<CalPoint> point = ParseCalLine(line);
    if (!point) return Because("Bad data in calibration file: " + dataFile + LinePlace(number, line));
    points_.push_back(*point);
  }
  if (points_.size() < 2) return Because("Unexpected end of calibration file: " + dataFile);
  Sort(points_);
  return {};
}

float clsCalFile::Value(double frequency, CalColumn column) {
  const bool covered = points_.size() >= 2 && frequency >= points_.front().Freq && frequency <= points_.back().Freq;
  if (!covered) return kMissing;
  const auto valueOf = [column](const CalPoint& point) { return ValueOf(point, column); };
  return cursor_.ValueAt(points_, frequency, DuplicateRule::Larger, valueOf, [&](const CalPoint& a, const CalPoint& b) {
    return Between(a, valueOf(a), b, valueOf(b), frequency, column);
  });
}

}  // namespace hylden
