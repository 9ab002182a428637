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
/// frequencies in MHz.
class Meter : public DefinedInstrument<MeterDefinition> {
 public:
  static constexpr double kDefinedSettling = -1;
  /// More than any meter needs, by 10 dB each, from its highest range to its lowest.
  static constexpr int kMostRangings = 30;

  Meter(Shell& shell, Gpib& gpib, ResponseParser& parser)
      : DefinedInstrument(shell, gpib), answers_(shell, gpib, parser, terminator_) {}

  Done InitMeter();
  Done MeterSetFreq(double frequencyMHz);
  /// Reference level (range).
  Done MeterSetLevel(double levelDbuv);
  Done MeterTrigger();
  /// The level. There is none without a number that was measured, above the meter's maximum level, where it finds no
  /// range for its reading within `kMostRangings` turns, and, silently, when a halt cuts the reading short.
  Result<double> MeterRead(ReadMode mode, double settlingSeconds = kDefinedSettling);
  Done MeterShutdown();
  /// Nothing that was sent before counts: the definition has changed since, and all is sent again.
  void ForgetSettings();

  float MaximumLevel() const { return definition_.MaximumLevel; }
  float MinimumLevel() const { return definition_.MinimumLevel; }
  float SettlingTime() const { return definition_.SettlingTime; }
  const std::string& LastAnswer() const { return answers_.LastAnswer(); }

 private:
  static constexpr double kNoReference = 999;

  bool HasLevelCommand() const { return !definition_.LevSetPrefix.empty() || !definition_.LevSetSuffix.empty(); }
  bool IsScope() const { return definition_.Type == static_cast<std::int32_t>(MeterType::Scope); }
  double FreqSetting(double frequencyMHz) const;
  Done SendReference(double levelDbuv);
  /// Triggers unless a trigger is pending, and waits until the capture may be read.
  Done AwaitCapture(double settlingSeconds);
  /// What the answer stands for, dBuV.
  Result<double> ReadLevel();
  /// The same where it is a level.
  Result<double> Judged(double levelDbuv) const;
  tl::unexpected<Failure> ReadFailed(Failure cause) const;

  AnswerReader answers_;
  double currentFreq_ = 0;                  ///< last set, MHz
  double currentReference_ = kNoReference;  ///< last set, dBuV
};

}  // namespace hylden
