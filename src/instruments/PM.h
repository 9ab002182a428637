#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/AnswerReader.h"
#include "instruments/DefinedInstrument.h"
#include "instruments/PowerMeterDefinition.h"

namespace hylden {

class ResponseParser;
class Shell;

/// The station's power meter, driven through its definition. Powers in dBm, frequencies in MHz.
class PM : public DefinedInstrument<PowerMeterDefinition> {
 public:
  /// Channel argument that lets the band decide: channel 1 up to the band-switch frequency, channel 2 above.
  static constexpr int kByBand = 0;

  PM(Shell& shell, Gpib& gpib, ResponseParser& parser)
      : DefinedInstrument(shell, gpib), answers_(shell, gpib, parser, terminator_) {}

  Done InitPwrMtr();
  Done PwrMtrSetFreq(double frequencyMHz);
  Done PwrMtrSelect(int channel);
  /// Triggers also after a failed selection, which is then the failure.
  Done PwrMtrTrigger(int channel);
  /// The power; -999 for 0 W. There is none without a number that was measured, and, silently, when a halt cuts the
  /// reading short.
  Result<double> ReadPower(int channel);
  Done PwrMtrShutdown();
  /// Nothing that was sent before counts: the definition has changed since, and all is sent again.
  void ForgetSettings();

  double Bandswitch() const { return definition_.Bandswitch; }
  void SetBandswitch(double frequencyMHz) { definition_.Bandswitch = frequencyMHz; }
  const std::string& LastAnswer() const { return answers_.LastAnswer(); }

 private:
  /// The channel that the argument stands for at the present frequency.
  int ChannelFor(int channel) const;
  Done TuneChannels(double frequencyMHz);
  /// The frequency for one sensor's calibration factor.
  Done TuneChannel(int channel, const std::string& command);
  /// What the answer stands for, dBm.
  Result<double> ReadDbm(int channel);
  /// The same where it is a power.
  Result<double> Judged(double powerDbm) const;
  tl::unexpected<Failure> ReadFailed(Failure cause) const;

  AnswerReader answers_;
  double currentFreq_ = 0;  ///< last set, MHz
};

}  // namespace hylden
