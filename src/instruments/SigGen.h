#pragma once

#include <string>
#include <string_view>

#include "instruments/DefinedInstrument.h"
#include "instruments/SigGenDefinition.h"

namespace hylden {

class Shell;

enum class Modulation : int { None = 0, Am = 1, Fm = 2, Pulse = 3 };

/// The generator's output as far as the program knows. Unknown, after a command that did not get through, counts as on.
enum class Rf { Off, On, Unknown };

/// The station's signal generator, driven through its definition. A request outside the definition's limits is refused
/// with RF off; frequency and level go out only when they change, the falling one first; while RF is off a request is
/// held for the next RfOn. Frequencies in MHz, levels in dBm. Failures are reported here; callers add nothing.
class SigGen : public DefinedInstrument<SigGenDefinition> {
 public:
  SigGen(Shell& shell, Gpib& gpib) : DefinedInstrument(shell, gpib) {}

  /// Opens the generator with modulation and RF off; a frequency of exactly 0 starts at the generator's minimum.
  bool InitSigGen(double frequencyMHz, float levelDbm);
  bool SetFreqLevel(double frequencyMHz, float levelDbm);
  /// Applies the held request and switches on. RF counts as on from the attempt, even a failed one.
  bool RfOn();
  /// Always tries. Nothing is sent to a generator without the command: it comes up at its minimum level at the next
  /// RfOn, and until then goes on sending as it did.
  bool RfOff();
  /// RF off as far as the generator can: one without the command is taken to its minimum level at once. Whatever has to
  /// have RF off uses this, not the bare command. Always tries and reports nothing, so that it can be tried again and
  /// again; after a failure RF counts as on. The status words stay those of the call before.
  bool SilenceRf();
  /// The same; a failure is reported.
  bool SilenceOrReport();
  /// @param useDepth  AM is later switched off and on by its depth
  bool SetAM(float frequencyKHz, float depthPercent, bool useDepth);
  bool SetFM(float frequencyKHz, float deviationKHz);
  bool SetPulse(float frequencyKHz, float widthMs);
  bool AmOn();
  bool FmOn();
  bool PulseOn();
  bool ModOff();
  /// Minimum level and frequency, which are sent with RF off, too, RF off, local; stops at the first failure.
  bool ShutdownSigGen();

  float MaximumLevel() const { return definition_.MaximumLevel; }
  float MinimumLevel() const { return definition_.MinimumLevel; }
  bool AmCapable() const { return definition_.AmCapable != 0; }
  bool FmCapable() const { return definition_.FmCapable != 0; }
  bool PulseCapable() const { return definition_.PulseCapable != 0; }
  Rf RfState() const { return rf_; }
  /// RF is on, or may be.
  bool RfIsOn() const { return rf_ != Rf::Off; }

 private:
  static constexpr float kNoLevel = -999;

  /// Unknown: as the generator was found, or the last command did not get through; both commands are then sent.
  enum class Switched { Off, On, Unknown };

  /// Where the level that was sent last is not known: which of the two goes out first.
  enum class UnknownLevel { FreqFirst, LevelFirst };

  bool HasLevelCommand() const { return !definition_.LevSetPrefix.empty() || !definition_.LevSetSuffix.empty(); }
  /// Holds a request; refuses one outside the limits with RF off.
  bool Request(double frequencyMHz, float levelDbm);
  /// Sends what differs between the request and what was sent last.
  bool SendRequest(UnknownLevel order = UnknownLevel::FreqFirst);
  /// The same; nothing is reported.
  bool SendChanges(UnknownLevel order);
  bool SendFreq();
  bool SendLevel();
  void ForgetSent();
  /// What stands for RF off on a generator without the command: the next RfOn comes up at the minimum level.
  void RequestMinimumLevel();
  bool TrySilence();
  bool LowerToMinimum();
  bool SwitchModulationOn(const std::string& command, const std::string& failure);
  bool SetUpAm(float frequencyKHz, float depthPercent, bool useDepth);
  bool SendAm(float frequencyKHz, float depthPercent);
  bool SendModulation(const std::string& prefix, float value, std::string_view pattern, const std::string& suffix);
  bool SendText(const std::string& text, const std::string& failure);
  bool Refuse(const std::string& text);

  double currentFreq_ = 0;         ///< last sent, MHz; 0 when not known
  float currentLevel_ = kNoLevel;  ///< last sent, dBm
  double requestedFreq_ = 0;       ///< applied at the next RfOn
  float requestedLevel_ = 0;
  Rf rf_ = Rf::Off;
  Switched modulated_ = Switched::Off;
  Modulation modulation_ = Modulation::None;  ///< the one set up last
  bool switchByDepth_ = false;                ///< AM goes off and on by its depth
  float savedAmFreq_ = 0, savedAmDepth_ = 0;
};

}  // namespace hylden
