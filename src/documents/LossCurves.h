#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "documents/CurveFile.h"
#include "measure/Interpolation.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;

/// An insertion loss, or another factor table, over frequency: the loss in dB and, where the file has them, the
/// readings without and with the cable in dBuV.
class LossCurves : public CurveFile {
 public:
  /// What is no factor table is refused as one.
  static Result<std::unique_ptr<CurveFile>> Load(Shell& shell, const std::string& path);

  const std::vector<CurveQuantity>& Quantities() const override;
  std::vector<CurvePoint> Points(std::size_t quantity) const override;
  double ValueAt(std::size_t quantity, double freqMHz) override;
  std::string Description() const override;

 private:
  static constexpr auto kNone = static_cast<float>(kGap);
  struct Point {
    double Freq = 0;
    std::array<float, 3> Values = {kNone, kNone, kNone};  ///< loss, direct, insert
  };

  using CurveFile::CurveFile;
  static Point PointOf(std::string_view line);
  void Read();

  std::vector<Point> points_;
  FrequencyCursor cursor_;
};

}  // namespace hylden
