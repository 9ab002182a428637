#include "documents/CurveOverlay.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>

#include "documents/CalCurves.h"
#include "documents/LossCurves.h"
#include "shell/FormInput.h"
#include "text/ExistingPath.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

bool Covers(const std::vector<CurvePoint>& points, double freqMHz) {
  return !points.empty() && freqMHz >= points.front().Freq && freqMHz <= points.back().Freq;
}

std::string RangeOf(const std::vector<CurvePoint>& points) {
  return "(" + ShortestText(points.front().Freq) + " - " + ShortestText(points.back().Freq) + " MHz)";
}

/// Without the noise of what the files have as singles.
double Difference(double value, double first) {
  constexpr double kDigits = 1000;
  return std::round((value - first) * kDigits) / kDigits;
}

std::vector<CurvePoint> Differences(CurveFile& file, CurveFile& first, std::size_t quantity) {
  const std::vector<CurvePoint> own = file.Points(quantity), wanted = first.Points(quantity);
  std::vector<CurvePoint> points;
  points.reserve(wanted.size());
  for (const CurvePoint& point : wanted) {
    const bool isPair = !points.empty() && points.back().Freq == point.Freq;
    if (isPair || !Covers(own, point.Freq)) continue;
    points.push_back({point.Freq, Difference(file.ValueAt(quantity, point.Freq), first.ValueAt(quantity, point.Freq))});
  }
  return points;
}

std::string TextOf(double value, const std::string& unit) {
  return ShortestText(static_cast<float>(value)) + " " + unit;
}

/// The points that are no gaps.
std::vector<CurvePoint> ValuesOf(const Curve& curve) {
  std::vector<CurvePoint> values;
  std::copy_if(curve.Points.begin(), curve.Points.end(), std::back_inserter(values),
               [](const CurvePoint& point) { return !std::isnan(point.Value); });
  return values;
}

std::string LargestDifference(const std::vector<CurvePoint>& values) {
  const auto smaller = [](const CurvePoint& a, const CurvePoint& b) { return std::abs(a.Value) < std::abs(b.Value); };
  const CurvePoint largest = *std::max_element(values.begin(), values.end(), smaller);
  return largest.Value == 0 ? "none" : TextOf(largest.Value, "dB at ") + ShortestText(largest.Freq) + " MHz";
}

}  // namespace

Done CurveOverlay::Add(const std::string& path) {
  if (files_.size() >= kMost)
    return Because(std::to_string(kMost - 1) + " files are laid over the first one, and more can't be told apart.\r\n" +
                   "Remove one first.");
  const auto isShown = [&](const auto& file) { return ExistingPath(file->Path()) == ExistingPath(path); };
  if (std::any_of(files_.begin(), files_.end(), isShown)) return Because(path + "\r\nis shown already.");
  Result<std::unique_ptr<CurveFile>> file = Load(path);
  if (!file) return Because(file.error());
  if (!files_.empty())
    if (Done common = CheckCommon(**file); !common) return common;
  files_.push_back(std::move(*file));
  return {};
}

Result<std::unique_ptr<CurveFile>> CurveOverlay::Load(const std::string& path) const {
  return kind_ == CurveKind::Calibration ? CalCurves::Load(path) : LossCurves::Load(shell_, path);
}

Done CurveOverlay::CheckCommon(const CurveFile& other) const {
  const std::vector<CurvePoint> points = other.Points(0), wanted = files_.front()->Points(0);
  const auto isCommon = [&](const CurvePoint& point) { return Covers(points, point.Freq); };
  if (std::any_of(wanted.begin(), wanted.end(), isCommon)) return {};
  return Because(other.Path() + "\r\n" + RangeOf(points) + " has no frequency in common with\r\n" +
                 files_.front()->Path() + "\r\n" + RangeOf(wanted) + ".");
}

void CurveOverlay::Remove(std::size_t file) {
  files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(file));
}

void CurveOverlay::MakeFirst(std::size_t file) {
  const auto at = files_.begin() + static_cast<std::ptrdiff_t>(file);
  std::rotate(files_.begin(), at, at + 1);
}

std::string CurveOverlay::NameOf(std::size_t file) const {
  const auto names = [](const std::string& path) {
    const std::string stem = fs::path(FileNameOnly(path)).stem().string();
    const std::string folder = FileNameOnly(fs::path(path).parent_path().string());
    return std::vector<std::string>{stem, folder + "/" + stem, path};
  };
  const std::vector<std::string> own = names(files_[file]->Path());
  for (std::size_t longer = 0; longer + 1 < own.size(); ++longer) {
    const auto same = [&](const auto& other) { return names(other->Path())[longer] == own[longer]; };
    if (std::count_if(files_.begin(), files_.end(), same) == 1) return own[longer];
  }
  return own.back();
}

std::vector<Curve> CurveOverlay::Curves(const CurveChoice& choice) const {
  std::vector<Curve> curves;
  for (std::size_t file = 0; file < files_.size(); ++file) {
    const std::size_t from = choice.Quantity.value_or(0);
    const std::size_t to = choice.Quantity ? from + 1 : Quantities().size();
    for (std::size_t quantity = from; quantity < to; ++quantity) curves.push_back(CurveOf(file, quantity, choice));
  }
  return curves;
}

Curve CurveOverlay::CurveOf(std::size_t file, std::size_t quantity, const CurveChoice& choice) const {
  const CurveQuantity& shown = Quantities()[quantity];
  Curve curve{CurveName(file, quantity, choice), shown.Unit, {}, ValueAxis::Left, shown.StraightOn};
  if (choice.Difference) {
    curve.Unit = "dB";
    curve.Points = Differences(*files_[file], *files_.front(), quantity);
  } else {
    curve.Points = files_[file]->Points(quantity);
    // Together with levels a loss has an axis of its own.
    if (!choice.Quantity && curve.Unit == "dB") curve.Axis = ValueAxis::Right;
  }
  if (ValuesOf(curve).empty()) curve.Name += " (none)";
  return curve;
}

std::string CurveOverlay::CurveName(std::size_t file, std::size_t quantity, const CurveChoice& choice) const {
  std::string name = Quantities()[quantity].Name;
  if (files_.size() == 1 && !choice.FullNames) return name;
  return choice.Quantity && !choice.FullNames ? NameOf(file) : NameOf(file) + ", " + name;
}

std::string CurveOverlay::SummaryOf(std::size_t file, const CurveChoice& choice) const {
  const Curve curve = CurveOf(file, choice.Quantity.value_or(0), choice);
  const std::vector<CurvePoint> values = ValuesOf(curve);
  if (choice.Difference && file == 0) return "the first";
  if (values.empty()) return choice.Difference ? "nothing to compare" : "not recorded";
  if (choice.Difference) return LargestDifference(values);
  const auto lower = [](const CurvePoint& a, const CurvePoint& b) { return a.Value < b.Value; };
  const auto [lowest, highest] = std::minmax_element(values.begin(), values.end(), lower);
  return ShortestText(static_cast<float>(lowest->Value)) + " to " + TextOf(highest->Value, curve.Unit);
}

}  // namespace hylden
