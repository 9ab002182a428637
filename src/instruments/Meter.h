#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/AnswerReader.h"
#include "instruments/Gpib.h"
#include "instruments/MeterDefinition.h"

namespace hylden {

class ResponseParser;
class Shell;

enum class ReadMode : int { AutoRange = 0, Single = 1 };

/// The next reference level when a meter ranges itself, in dBuV; nothing when the level is in range, 0 to 6 dB under
/// the reference. The reference goes up to 10 dB above the level, at most to the maximum, and down by at most 10 dB,
/// but not below 3 dB above the level.
std::optional<double> NextReferenceLevel(double levelDbuv, double referenceDbuv, double maximumDbuv);

/// The station's meter (analyser, oscilloscope or RF voltmeter), driven through its definition. Levels in dBuV,
/// frequencies in MHz. Failures are reported here; callers add nothing.
class Meter {
 public:
  static constexpr double kDefinedSettling = -1;

  Meter(Shell& shell, Gpib& gpib, ResponseParser& parser) : shell_(shell), gpib_(gpib), answers_(shell, gpib, parser) {}

  bool InitMeter();
  bool MeterSetFreq(double frequencyMHz);
  /// Reference level (range).
  bool MeterSetLevel(double levelDbuv);
  bool MeterTrigger();
  /// The level; 999 after a failure, 1000 above the meter's maximum level.
  double MeterRead(ReadMode mode, double settlingSeconds = kDefinedSettling);
  bool MeterShutdown();

  bool LoadFile(const std::string& path);
  bool SaveFile(const std::string& path);
  void PrintSetup();

  float MaximumLevel() const { return definition_.MaximumLevel; }
  float MinimumLevel() const { return definition_.MinimumLevel; }
  double MaximumFreq() const { return definition_.MaximumFreq; }
  double MinimumFreq() const { return definition_.MinimumFreq; }
  float SettlingTime() const { return definition_.SettlingTime; }
  int Address() const { return definition_.Address; }
  void SetAddress(int address);
  const std::string& InstrumentName() const { return definition_.InstrumentName; }
  const std::string& FileName() const { return fileName_; }
  const std::string& LastAnswer() const { return answers_.LastAnswer(); }
  const MeterDefinition& Definition() const { return definition_; }
  void PutDefinition(const MeterDefinition& definition);

 private:
  static constexpr double kNoReference = 999;

  bool HasFreqCommand() const { return !definition_.FreqSetPrefix.empty() || !definition_.FreqSetSuffix.empty(); }
  bool HasLevelCommand() const { return !definition_.LevSetPrefix.empty() || !definition_.LevSetSuffix.empty(); }
  bool IsScope() const { return definition_.Type == static_cast<std::int32_t>(MeterType::Scope); }
  double FreqSetting(double frequencyMHz) const;
  /// Triggers unless a trigger is pending, and waits until the capture may be read.
  bool AwaitCapture(double settlingSeconds);
  /// One reading in dBuV.
  std::optional<double> ReadLevel();
  bool SendCommand(const std::string& command);
  bool WriteFailed();
  double ReadFailed();

  Shell& shell_;
  Gpib& gpib_;
  MeterDefinition definition_;
  AnswerReader answers_;
  std::string fileName_;
  double currentFreq_ = 0;                  ///< last requested, MHz
  double currentReference_ = kNoReference;  ///< last requested, dBuV
};

}  // namespace hylden
