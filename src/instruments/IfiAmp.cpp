#include "instruments/IfiAmp.h"

#include <cmath>
#include <limits>
#include <optional>

#include "instruments/ShownAnswer.h"
#include "instruments/SigGen.h"
#include "shell/Shell.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr double kBandChangeSeconds = 2.0;
constexpr std::size_t kPowerAnswerSize = 80;
constexpr const char* kName = "IFI amp";
constexpr const char* kFailed = "Error sending command to amps";

struct PowerTexts {
  std::string first, second;
};

/// "0100 0200": the first figure in columns 6 to 9, the second in columns 1 to 4. A short answer lacks figures.
PowerTexts SplitColumns(const std::string& answer) {
  return {answer.size() < 6 ? "" : answer.substr(5, 4), answer.substr(0, 4)};
}

/// "50.00 10.01": the first figure before the blank, the second after it. A short answer lacks figures.
PowerTexts SplitAtBlank(const std::string& answer) {
  const auto blank = answer.find(' ');
  return {answer.substr(0, blank), blank == std::string::npos ? "" : answer.substr(blank + 1)};
}

/// A figure that is not there is 0; nothing for one that a float can't hold.
std::optional<float> Figure(const std::string& text) {
  const double value = LeadingNumber(text);
  if (!(std::abs(value) <= double{std::numeric_limits<float>::max()})) return std::nullopt;
  return static_cast<float>(value);
}

}  // namespace

Done IfiAmp::IfiInit(AmpControl mode, double bandSwitchMHz) {
  mode_ = mode;
  bandSwitchMHz_ = bandSwitchMHz;
  if (mode == AmpControl::Ifi) gpib_.Adopt(kLowUnit, kName), gpib_.Adopt(kHighUnit, kName);
  return IfiReset();
}

Done IfiAmp::IfiReset() {
  if (mode_ != AmpControl::Ifi) return {};
  band_ = Band::None;
  const Done silenced = sigGen_.SilenceRf();
  Done low, high;
  for (const UnitCommand& command : {UnitCommand{kLowUnit, "8"},
                                     {kHighUnit, "FA"},
                                     {kHighUnit, "L3"},
                                     {kHighUnit, "M1"},
                                     {kHighUnit, "ON"},
                                     {kHighUnit, "B1"},
                                     {kHighUnit, "ZA"}}) {
    Done& unit = command.unit == kLowUnit ? low : high;
    if (unit) unit = SendTo(command);
  }
  return Both(Both(silenced, low), high);
}

Done IfiAmp::IfiSetBand(double frequencyMHz) {
  if (mode_ != AmpControl::Ifi) return {};
  if (frequencyMHz == 0) return IfiReset();
  const Band wanted = frequencyMHz <= bandSwitchMHz_ ? Band::Low : Band::High;
  if (wanted == band_) return {};
  // The amplifiers never change over under power.
  if (Done silenced = sigGen_.SilenceRf(); !silenced) return silenced;
  band_ = Band::None;  // until all has gone out: half a change-over is neither band
  return (wanted == Band::Low ? SelectLow() : SelectHigh()).map([&] { band_ = wanted; });
}

Done IfiAmp::SelectLow() {
  Done changedOver = SendAll({{kLowUnit, "8"},
                              {kHighUnit, "FA"},
                              {kHighUnit, "L3"},
                              {kHighUnit, "M1"},
                              {kHighUnit, "ON"},
                              {kHighUnit, "B1"},
                              {kLowUnit, "9"}});
  if (!changedOver) return changedOver;
  shell_.delay.Delay(kBandChangeSeconds, false);
  return SendTo({kHighUnit, "ZA"});
}

Done IfiAmp::SelectHigh() {
  Done changedOver = SendAll(
      {{kHighUnit, "FA"}, {kLowUnit, "8"}, {kHighUnit, "L3"}, {kHighUnit, "M1"}, {kHighUnit, "ON"}, {kHighUnit, "B2"}});
  if (!changedOver) return changedOver;
  shell_.delay.Delay(kBandChangeSeconds, false);
  return SendTo({kHighUnit, "ZA"});
}

Result<IfiAmp::Powers> IfiAmp::IfiReadPower() {
  if (mode_ != AmpControl::Ifi) return Powers{-1, -1};
  if (band_ == Band::None) return Because();
  const bool low = band_ == Band::Low;
  const int unit = low ? kLowUnit : kHighUnit;
  if (const Done asked = SendTo({unit, "RP"}); !asked) return Because(asked.error());
  std::string answer;
  if (!gpib_.Receive(unit, answer, gpib::kStopEnd, kPowerAnswerSize)) return Because(gpib_.GpibError(kFailed));
  const PowerTexts texts = low ? SplitColumns(answer) : SplitAtBlank(answer);
  const auto first = Figure(texts.first), second = Figure(texts.second);
  if (!first || !second) return Because("The amplifier's answer is no power:\r\n" + ShownAnswer(answer));
  return Powers{*first, *second};
}

Done IfiAmp::SendAll(std::initializer_list<UnitCommand> commands) {
  for (const UnitCommand& command : commands)
    if (Done sent = SendTo(command); !sent) return sent;
  return {};
}

Done IfiAmp::SendTo(const UnitCommand& command) {
  return gpib_.Send(command.unit, std::string(command.text) + "\r\n", kFailed);
}

}  // namespace hylden
