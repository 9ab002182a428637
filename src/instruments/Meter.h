#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/AnswerReader.h"
#include "instruments/DefinedInstrument.h"
#include "instruments/MeterDefinition.h"

namespace hylden {

class ResponseParser;
class Shell;

enum class ReadMode : int { AutoRange = 0, Single = 1 };

/// The next reference level when a meter ranges itself, in dBuV; nothing when the level is in range, 0 to 6 dB under
/// the reference, or when the reference is as low as it goes. The reference goes up to 10 dB above the level, at most
/// to the maximum, and down by at most 10 dB, but not below 3 dB above the level or below the minimum.
std::optional<double> NextReferenceLevel(double levelDbuv, double referenceDbuv, double minimumDbuv,
                                         double maximumDbuv);

/// The station's meter (analyser, oscilloscope or RF voltmeter), driven through its definition. Levels in dBuV,
/// frequencies in MHz. Failures are reported here; callers add nothing.
class Meter : public DefinedInstrument<MeterDefinition> {
 public:
  static constexpr double kDefinedSettling = -1;
  /// More than any meter needs, by 10 dB each, from its highest range to its lowest.
  static constexpr int kMostRangings = 30;

  Meter(Shell& shell, Gpib& gpib, ResponseParser& parser)
      : DefinedInstrument(shell, gpib), answers_(shell, gpib, parser, terminator_) {}

  bool InitMeter();
  bool MeterSetFreq(double frequencyMHz);
  /// Reference level (range).
  bool MeterSetLevel(double levelDbuv);
  bool MeterTrigger();
  /// The level; 999 after a failure, 1000 above the meter's maximum level. An answer without a number reads as 0. A
  /// meter that finds no range for its reading within `kMostRangings` turns has failed.
  double MeterRead(ReadMode mode, double settlingSeconds = kDefinedSettling);
  bool MeterShutdown();

  float MaximumLevel() const { return definition_.MaximumLevel; }
  float MinimumLevel() const { return definition_.MinimumLevel; }
  float SettlingTime() const { return definition_.SettlingTime; }
  const std::string& LastAnswer() const { return Last().Answer; }
  const LastReading& Last() const { return answers_.Last(); }

 private:
  static constexpr double kNoReference = 999;

  bool HasLevelCommand() const { return !definition_.LevSetPrefix.empty() || !definition_.LevSetSuffix.empty(); }
  bool IsScope() const { return definition_.Type == static_cast<std::int32_t>(MeterType::Scope); }
  double FreqSetting(double frequencyMHz) const;
  bool SendReference(double levelDbuv);
  /// Triggers unless a trigger is pending, and waits until the capture may be read.
  bool AwaitCapture(double settlingSeconds);
  /// One reading in dBuV.
  std::optional<double> ReadLevel();
  bool SendCommand(const std::string& command);
  bool WriteFailed();
  double ReadFailed();
  double RangingFailed(double levelDbuv);

  AnswerReader answers_;
  double currentFreq_ = 0;                  ///< last set, MHz
  double currentReference_ = kNoReference;  ///< last set, dBuV
};

}  // namespace hylden
