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

/// The station's power meter, driven through its definition. Powers in dBm, frequencies in MHz. Failures are reported
/// here; callers add nothing.
class PM : public DefinedInstrument<PowerMeterDefinition> {
 public:
  /// Channel argument that lets the band decide: channel 1 up to the band-switch frequency, channel 2 above.
  static constexpr int kByBand = 0;

  PM(Shell& shell, Gpib& gpib, ResponseParser& parser)
      : DefinedInstrument(shell, gpib), answers_(shell, gpib, parser, terminator_) {}

  bool InitPwrMtr();
  bool PwrMtrSetFreq(double frequencyMHz);
  bool PwrMtrSelect(int channel);
  bool PwrMtrTrigger(int channel);
  /// The power; 999 after a failure. An answer without a number reads as 0.
  double ReadPower(int channel);
  bool PwrMtrShutdown();

  double Bandswitch() const { return definition_.Bandswitch; }
  void SetBandswitch(double frequencyMHz) { definition_.Bandswitch = frequencyMHz; }
  const std::string& LastAnswer() const { return Last().Answer; }
  const LastReading& Last() const { return answers_.Last(); }

 private:
  /// The channel that the argument stands for at the present frequency.
  int ChannelFor(int channel) const;
  bool TuneChannels(double frequencyMHz);
  /// The frequency for one sensor's calibration factor.
  bool TuneChannel(int channel, const std::string& command);
  /// One reading in dBm.
  std::optional<double> ReadDbm(int channel);
  bool WriteFailed();
  double ReadFailed();

  AnswerReader answers_;
  double currentFreq_ = 0;  ///< last set, MHz
};

}  // namespace hylden
