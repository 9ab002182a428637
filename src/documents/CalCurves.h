#pragma once

#include <memory>

#include "documents/CalInfo.h"
#include "documents/CurveFile.h"
#include "documents/clsCalFile.h"

namespace hylden {

/// The values of a calibration record, by their place in Quantities().
enum class CalQuantity : std::size_t {
  GeneratorLevel,  ///< dBm
  TestLevel,       ///< dBuV
  ForwardPower,    ///< dBm
  ReversePower,    ///< dBm
  NetPower,        ///< forward less reverse, in watts, as dBm
  TestLevelGain,   ///< test level in dBuV less generator level in dBuV (dBm + 107, across 50 ohm): all that stands
                   ///< between
  ForwardGain,     ///< forward power less generator level, dB: the amplifier, and the cables up to the coupler
};

/// A calibration record over frequency.
class CalCurves : public CurveFile {
 public:
  /// Reads a record. @param infoFile  ends with ".hyinfo"
  static Result<std::unique_ptr<CurveFile>> Load(const std::string& infoFile);

  const std::vector<CurveQuantity>& Quantities() const override;
  std::vector<CurvePoint> Points(std::size_t quantity) const override;
  /// From what clsCalFile looks up there: a gain and a net power are those of the values between two points.
  double ValueAt(std::size_t quantity, double freqMHz) override;
  std::string Description() const override;

 private:
  using CurveFile::CurveFile;

  CalInfoRec info_;
  clsCalFile data_;
};

}  // namespace hylden
