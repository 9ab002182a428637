#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "measure/Interpolation.h"
#include "shell/Failure.h"

namespace hylden {

class LineReader;

/// One calibrated frequency: MHz, dBm, dBuV, dBm, dBm; a power that was not recorded is -999.
struct CalPoint {
  double Freq = 0;
  float SigGenLevel = 0;
  float TestLevel = 0;
  float FwdPwr = -999;
  float RevPwr = -999;
};
template <class F>
void RowValues(F& f, CalPoint& point) {
  f.Value(point.Freq);
  f.Value(point.SigGenLevel);
  f.Value(point.TestLevel);
  f.Value(point.FwdPwr);
  f.Value(point.RevPwr);
}

/// Forward minus reverse power, in watts, as dBm; -999 where one of them is, where nothing is left, or where
/// they are no powers that watts can tell.
float NetPwrOf(float forwardDbm, float reverseDbm);

/// The value columns of a calibration point.
enum class CalColumn : int { SigGenLevel = 0, TestLevel = 1, FwdPwr = 2, RevPwr = 3 };

/// A point from a line of a .cal file; nothing for a bad line.
std::optional<CalPoint> ParseCalLine(std::string_view line);

/// The data file beside an info file, whose name ends with ".hyinfo".
std::string DataFileOf(std::string_view infoFile);
/// Before a record is read: puts in place what a save of it that was cut off has left. @throws RuntimeError
void SettleRecord(const std::string& infoFile);

/// A calibration record's points, loaded once and looked up at rising frequencies. Frequencies in MHz. Between points
/// levels and powers are interpolated linearly over frequency (powers in dBm), the test level over log frequency; at a
/// band-change pair the larger value counts. A getter gives -999 where it has no answer.
class clsCalFile {
 public:
  clsCalFile() = default;
  /// Points that were loaded before.
  explicit clsCalFile(std::vector<CalPoint> points);

  double GetStartFreq() const;
  double GetStopFreq() const;
  /// The highest point index: one less than there are points.
  int GetNumSteps() const;
  const std::vector<CalPoint>& Points() const { return points_; }
  float GetSigGen(double frequency);
  float GetTestLevel(double frequency);
  float GetFwdPwr(double frequency);
  float GetRevPwr(double frequency);
  /// Forward minus reverse, in watts, as dBm.
  float GetNetPwr(double frequency);
  /// Appends the points of the .cal file that lies beside the info file, and sorts them by rising frequency.
  /// Silent for an empty name.
  Done LoadFile(const std::string& infoFileName);

 private:
  Done ReadPoints(LineReader lines, const std::string& dataFile);
  float Value(double frequency, CalColumn column);

  std::vector<CalPoint> points_;
  FrequencyCursor cursor_;
};

}  // namespace hylden
