#pragma once

#include <cstdint>
#include <string>

#include "instruments/Gpib.h"
#include "instruments/MeterDefinition.h"

namespace hylden {

class ResponseParser;
class Shell;

enum class ReadMode : int { AutoRange = 0, Single = 1 };

/// The station's meter (analyser, oscilloscope or RF voltmeter), driven through its definition. Levels in dBuV,
/// frequencies in MHz. Failures are reported here; callers add nothing.
class Meter {
 public:
  static constexpr double kDefinedSettling = -1;

  Meter(Shell& shell, Gpib& gpib, ResponseParser& parser) : shell_(shell), gpib_(gpib), parser_(parser) {}

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
  const std::string& LastAnswer() const { return lastAnswer_; }
  const MeterDefinition& Definition() const { return definition_; }
  void PutDefinition(const MeterDefinition& definition);

 private:
  Shell& shell_;
  Gpib& gpib_;
  ResponseParser& parser_;
  MeterDefinition definition_;
  std::string fileName_;
  std::string lastAnswer_;
};

}  // namespace hylden
