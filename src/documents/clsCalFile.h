#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "measure/Interpolation.h"

namespace hylden {

class LineReader;
class Shell;

/// One calibrated frequency: MHz, dBm, dBuV, dBm, dBm; a power that was not recorded is -999.
struct CalPoint {
  double Freq = 0;
  float SigGenLevel = 0;
  float TestLevel = 0;
  float FwdPwr = -999;
  float RevPwr = -999;
};

/// The value columns of a calibration point.
enum class CalColumn : int { SigGenLevel = 0, TestLevel = 1, FwdPwr = 2, RevPwr = 3 };

/// A point from a line of a .cal file; nothing for a bad line.
std::optional<CalPoint> ParseCalLine(std::string_view line);

/// A calibration record's points, loaded once and looked up at rising frequencies. Frequencies in MHz. Between points
/// levels and powers are interpolated linearly over frequency (powers in dBm), the test level over log frequency; at a
/// band-change pair the larger value counts. A getter gives -999 where it has no answer.
class clsCalFile {
 public:
  explicit clsCalFile(Shell& shell) : shell_(shell) {}

  double GetStartFreq() const;
  double GetStopFreq() const;
  /// The highest point index: one less than there are points.
  int GetNumSteps() const;
  float GetSigGen(double frequency);
  float GetTestLevel(double frequency);
  float GetFwdPwr(double frequency);
  float GetRevPwr(double frequency);
  /// Forward minus reverse, in watts, as dBm.
  float GetNetPwr(double frequency);
  /// Appends the points of the .cal file that lies beside the info file, and sorts them by rising frequency.
  /// @return false after a message
  bool LoadFile(const std::string& infoFileName);

 private:
  bool ReadPoints(LineReader& lines, const std::string& dataFile);
  /// Shows the message; false.
  bool Refuse(const std::string& message);
  float Value(double frequency, CalColumn column);

  Shell& shell_;
  std::vector<CalPoint> points_;
  FrequencyCursor cursor_;
};

}  // namespace hylden
