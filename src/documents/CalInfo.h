#pragma once

#include <string>
#include <string_view>

#include "documents/CalSetupRecord.h"
#include "shell/Failure.h"

namespace hylden {

/// What a calibration record's info file (.hyinfo) tells about it.
struct CalInfoRec {
  std::string SetupDescription;
  std::string AmpUsed;
  std::string DeviceDescription;
  std::string TestLevel;  ///< flat level in volts and "v" (10v), or the path of the test level file
  std::string FreqRange;  ///< "0.15 - 80", MHz
  hylden::CouplingMethod CouplingMethod = hylden::CouplingMethod::Clamp150Ohm;
};

constexpr std::string_view FileKind(const CalInfoRec&) {
  return "calibration info file";
}

template <class F>
void Fields(F& f, CalInfoRec& c) {
  f.Text(c.SetupDescription);
  f.Text(c.AmpUsed);
  f.Text(c.DeviceDescription);
  f.Text(c.TestLevel);
  f.Text(c.FreqRange);
  f.Code(c.CouplingMethod);
}

/// The calibration info that the program shows and checks against.
struct CalInfo {
  /// One that fails leaves the record as it was.
  Done LoadDef(const std::string& path);

  CalInfoRec Record;
};

}  // namespace hylden
