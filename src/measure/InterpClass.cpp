#include "measure/InterpClass.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "shell/Shell.h"
#include "text/LinePlace.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr const char* kBadData = "Bad data in calibration file";
constexpr const char* kNoPoints = "No calibration points in interp file";

/// 1 for a number character, 0 for a separator, -1 otherwise.
int CharClass(char character) {
  if (character >= '0' && character <= '9') return 1;
  if (character == '+' || character == '-' || character == '.') return 1;
  if (character == ' ' || character == '\t' || character == ',') return 0;
  return -1;
}

/// The next run of number characters; the line is left behind it.
std::string_view NextToken(std::string_view& line) {
  while (!line.empty() && CharClass(line.front()) == 0) line.remove_prefix(1);
  std::size_t length = 0;
  while (length < line.size() && CharClass(line[length]) == 1) ++length;
  const std::string_view token = line.substr(0, length);
  line.remove_prefix(length);
  return token;
}

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

/// How many commas stand between two digits, without a blank.
int GluingCommas(std::string_view text) {
  int commas = 0;
  for (std::size_t at = text.find(','); at != std::string_view::npos; at = text.find(',', at + 1))
    if (at > 0 && at + 1 < text.size() && IsDigit(text[at - 1]) && IsDigit(text[at + 1])) ++commas;
  return commas;
}

/// Whether a comma in a line of numbers may be somebody's decimal sign: "10,5 2,3" could be two numbers or four. A
/// point in the same group of numbers shows that its commas only separate, and so does a line that is no more than the
/// wanted pair ("10,5").
/// @param wanted  how many numbers the line is read for
bool MayHoldDecimalComma(std::string_view line, std::size_t wanted) {
  if (GluingCommas(line) == 0 || std::any_of(line.begin(), line.end(), [](char c) { return CharClass(c) < 0; }))
    return false;
  const std::string_view all = Trim(line);
  if (wanted == 2 && GluingCommas(all) == 1 && all.find_first_of(" \t") == std::string_view::npos) return false;
  for (std::size_t start = 0; start < all.size();) {
    const std::size_t end = std::min(all.find_first_of(" \t", start), all.size());
    const std::string_view group = all.substr(start, end - start);
    if (GluingCommas(group) > 0 && group.find('.') == std::string_view::npos) return true;
    start = end + 1;
  }
  return false;
}

bool FitsSingle(double value) {
  return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
}

/// The points of a factor file, after its header, in file order.
Result<std::vector<FactorPoint>> ReadPoints(LineReader lines, const std::string& fileName) {
  ParsedFactorLine next;
  std::size_t number = 0;
  const auto bad = [&](std::string_view line) {
    return Because(std::string(kBadData) + "\r\n" + fileName + LinePlace(number, line));
  };
  do {
    const std::string_view line = lines.AtEnd() ? std::string_view() : lines.NextLine();
    ++number;
    if (MayHoldDecimalComma(line, 2)) return bad(line);
    next = ParseFactorLine(line);
    if (lines.AtEnd()) return Because("Unexpected end of file in " + fileName);
  } while (!next.Ok);
  std::vector<FactorPoint> points{{next.Freq, next.Value}};
  while (!lines.AtEnd()) {
    const std::string_view line = lines.NextLine();
    ++number;
    next = ParseFactorLine(line);
    if (!next.Ok) return bad(line);
    points.push_back({next.Freq, next.Value});
  }
  if (points.size() < 2) return Because("Unexpected end of interpolation file\r\n" + fileName);
  return points;
}

bool Below(const FactorPoint& a, const FactorPoint& b) {
  return a.Freq < b.Freq;
}

/// Sorts the points and leaves out those between the first and the last of a run of equal values: they add nothing to
/// an interpolation. Points of an unsorted file are neighbours only once they are sorted.
void SortAndCompact(std::vector<FactorPoint>& points) {
  if (!std::is_sorted(points.begin(), points.end(), Below)) std::stable_sort(points.begin(), points.end(), Below);
  std::size_t kept = 1;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const float value = points[i].Value;
    const bool within = i + 1 < points.size() && points[kept - 1].Value == value && points[i + 1].Value == value;
    if (!within) points[kept++] = points[i];
  }
  points.resize(kept);
}

/// A frequency without an exponent, which a reader of the format would not take.
std::string PlainFrequency(double frequency) {
  const std::string text = ShortestText(frequency);
  return text.find('E') == std::string::npos ? text : Format(frequency, "0.0####################");
}

}  // namespace

bool ReadNumbers(std::string_view line, std::initializer_list<double*> numbers) {
  if (std::any_of(line.begin(), line.end(), [](char c) { return CharClass(c) < 0; })) return false;
  if (MayHoldDecimalComma(line, numbers.size())) return false;
  for (double* const number : numbers) {
    const std::string_view token = NextToken(line);
    // The line under a heading, "----- -----", holds no number.
    if (token.find_first_of("0123456789") == std::string_view::npos) return false;
    const double value = LeadingNumber(token);
    if (!std::isfinite(value)) return false;
    *number = value;
  }
  return true;
}

ParsedFactorLine ParseFactorLine(std::string_view line) {
  double frequency = 0, value = 0;
  if (!ReadNumbers(line, {&frequency, &value}) || !FitsSingle(value)) return {};
  return {true, frequency, static_cast<float>(value)};
}

Done InterpClass::InitInterp(const std::string& fileName) {
  points_.clear();
  if (fileName.empty()) return Because();
  return Trapped("InterpClass.FileToTable", fileName, [&] {
    return ReadPoints(LineReader(ReadTextFile(fileName)), fileName).and_then([&](std::vector<FactorPoint> points) {
      SortAndCompact(points);
      points_ = std::move(points);
      return Done();
    });
  });
}

Result<float> InterpClass::InterpVal(double frequency, FreqScale scale, DuplicateRule rule) {
  if (points_.size() < 2) return Because(kNoPoints);
  if (!(frequency >= points_.front().Freq && frequency <= points_.back().Freq)) return Because();
  return cursor_.ValueAt(
      points_, frequency, rule, [](const FactorPoint& point) { return point.Value; },
      [&](const FactorPoint& a, const FactorPoint& b) {
        return Interpolate(a.Freq, a.Value, b.Freq, b.Value, frequency, scale);
      });
}

double InterpClass::MaxFreq() const {
  return points_.empty() ? -1 : points_.back().Freq;
}

double InterpClass::MinFreq() const {
  return points_.empty() ? -1 : points_.front().Freq;
}

void InterpClass::GetTable(std::vector<double>& frequencies, std::vector<float>& values) {
  const std::vector<FactorPoint> points = points_;  // a turn of the user interface may load another table
  frequencies.assign(points.size() + 1, 0);
  values.assign(points.size() + 1, 0);
  for (std::size_t i = 0; i < points.size(); ++i) {
    frequencies[i] = points[i].Freq;
    values[i] = points[i].Value;
    shell_.events.Yield(shell_.clock.TickMs());
  }
}

Done InterpClass::SaveFile(const std::string& fileName) const {
  if (points_.size() < 2) return Because(kNoPoints);
  std::vector<std::string> lines;
  for (const FactorPoint& point : points_)
    lines.push_back(PlainFrequency(point.Freq) + ", " + Format(point.Value, "0.0##"));
  return Trapped("InterpClass.SaveFile", fileName, [&] { ReplaceFile(fileName, JoinLines(lines)); });
}

}  // namespace hylden
