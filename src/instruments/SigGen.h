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

inline constexpr char kRfMayBeOn[] = "RF could not be switched off: switch the amplifier off by hand.";

/// The station's signal generator, driven through its definition. A request outside the definition's limits is refused
/// with RF off; frequency and level go out only when they change, the falling one first; while RF is off a request is
/// held for the next RfOn. Frequencies in MHz, levels in dBm.
class SigGen : public DefinedInstrument<SigGenDefinition> {
 public:
  SigGen(Shell& shell, Gpib& gpib) : DefinedInstrument(shell, gpib) {}

  /// Opens the generator with modulation and RF off; a frequency of exactly 0 starts at the generator's minimum.
  Done InitSigGen(double frequencyMHz, float levelDbm);
  /// A level that rises is silently not done when a halt is requested.
  Done SetFreqLevel(double frequencyMHz, float levelDbm);
  /// Applies the held request and switches on. RF counts as on from the attempt, even a failed one. Silently not done
  /// when a halt is requested.
  Done RfOn();
  /// Always tries. Nothing is sent to a generator without the command: it comes up at its minimum level at the next
  /// RfOn, and until then goes on sending as it did.
  Done RfOff();
  /// RF off as far as the generator can: one without the command is taken to its minimum level at once. Whatever has to
  /// have RF off uses this, not the bare command. Always tries, again and again if need be, and more than once behind a
  /// command that did not get through; after a failure RF counts as on.
  Done SilenceRf();
  /// @param useDepth  AM is later switched off and on by its depth
  Done SetAM(float frequencyKHz, float depthPercent, bool useDepth);
  Done SetFM(float frequencyKHz, float deviationKHz);
  Done SetPulse(float frequencyKHz, float widthMs);
  Done AmOn();
  Done FmOn();
  Done PulseOn();
  /// Switches a modulation on as it was set up; nothing for none.
  Done ModOn(Modulation modulation);
  Done ModOff();
  /// Minimum level and frequency, which are sent with RF off, too, RF off, local; stops at the first failure.
  Done ShutdownSigGen();
  /// Somebody else is about to send the generator a command: RF may be on from now on.
  void CommandedByHand();
  /// Nothing that was sent before counts: the definition has changed since, and all is sent again.
  void ForgetSettings();

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
  Done Request(double frequencyMHz, float levelDbm);
  /// Sends what differs between the request and what was sent last.
  Done SendRequest(UnknownLevel order = UnknownLevel::FreqFirst);
  Done SendFreq();
  Done SendLevel();
  void ForgetSent();
  /// What stands for RF off on a generator without the command: the next RfOn comes up at the minimum level.
  void RequestMinimumLevel();
  Done EndRf();
  /// Behind a command that did not get through, whose beginning may stand in the generator: the RF off before this may
  /// have come onto it, and neither counts then. That goes out before a bare end all the same: half a level, ended, may
  /// be a higher one. Behind the bare end RF off goes out twice: a generator that has just hung may lose one more.
  Done EndRfAgain();
  Done LowerToMinimum();
  Done SwitchModulationOn(const std::string& command, const std::string& failure);
  Done SetUpAm(float frequencyKHz, float depthPercent, bool useDepth);
  Done SendAm(float frequencyKHz, float depthPercent);
  Done SendModulation(const std::string& prefix, float value, std::string_view pattern, const std::string& suffix,
                      const std::string& failure);
  /// With RF off.
  Done Refuse(const std::string& text);

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
