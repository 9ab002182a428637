#pragma once

#include <string>

#include "instruments/Gpib.h"
#include "instruments/SigGenDefinition.h"

namespace hylden {

class Shell;

enum class Modulation : int { None = 0, Am = 1, Fm = 2, Pulse = 3 };

/// The station's signal generator, driven through its definition. A request outside the definition's limits is refused
/// with RF off; frequency and level go out only when they change, the falling one first; while RF is off a request is
/// held for the next RfOn. Frequencies in MHz, levels in dBm. Failures are reported here; callers add nothing.
class SigGen {
 public:
  SigGen(Shell& shell, Gpib& gpib) : shell_(shell), gpib_(gpib) {}

  /// Opens the generator with modulation and RF off; a frequency of exactly 0 starts at the generator's minimum.
  bool InitSigGen(double frequencyMHz, float levelDbm);
  bool SetFreqLevel(double frequencyMHz, float levelDbm);
  bool RfOn();
  bool RfOff();
  /// @param useDepth  AM is later switched off and on by its depth
  bool SetAM(float frequencyKHz, float depthPercent, bool useDepth);
  bool SetFM(float frequencyKHz, float deviationKHz);
  bool SetPulse(float frequencyKHz, float widthMs);
  bool AmOn();
  bool FmOn();
  bool PulseOn();
  bool ModOff();
  /// Minimum level and frequency, RF off, local; stops at the first failure.
  bool ShutdownSigGen();

  bool LoadFile(const std::string& path);
  bool SaveFile(const std::string& path);
  /// The definition's listing on the printer.
  void PrintSetup();

  float MaximumLevel() const { return definition_.MaximumLevel; }
  float MinimumLevel() const { return definition_.MinimumLevel; }
  double MaximumFreq() const { return definition_.MaximumFreq; }
  double MinimumFreq() const { return definition_.MinimumFreq; }
  bool AmCapable() const { return definition_.AmCapable != 0; }
  bool FmCapable() const { return definition_.FmCapable != 0; }
  bool PulseCapable() const { return definition_.PulseCapable != 0; }
  int Address() const { return definition_.Address; }
  void SetAddress(int address);
  const std::string& InstrumentName() const { return definition_.InstrumentName; }
  const std::string& FileName() const { return fileName_; }
  const SigGenDefinition& Definition() const { return definition_; }
  void PutDefinition(const SigGenDefinition& definition);
  /// The program-wide RF-on indicator.
  bool RfIsOn() const { return rfOn_; }

 private:
  Shell& shell_;
  Gpib& gpib_;
  SigGenDefinition definition_;
  std::string fileName_;
  bool rfOn_ = false;
};

}  // namespace hylden
