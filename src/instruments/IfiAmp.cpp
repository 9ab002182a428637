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

constexpr int kLowUnit = 10, kHighUnit = 9;
constexpr double kBandChangeSeconds = 2.0;
constexpr std::size_t kPowerAnswerSize = 80;

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

bool IfiAmp::IfiInit(AmpControl mode, double bandSwitchMHz) {
  mode_ = mode;
  bandSwitchMHz_ = bandSwitchMHz;
  return IfiReset();
}

bool IfiAmp::IfiReset() {
  if (mode_ != AmpControl::Ifi) return true;
  band_ = Band::None;
  const bool silenced = sigGen_.SilenceOrReport();
  bool lowWorks = true, highWorks = true;
  for (const UnitCommand& command : {UnitCommand{kLowUnit, "8"},
                                     {kHighUnit, "FA"},
                                     {kHighUnit, "L3"},
                                     {kHighUnit, "M1"},
                                     {kHighUnit, "ON"},
                                     {kHighUnit, "B1"},
                                     {kHighUnit, "ZA"}}) {
    bool& works = command.unit == kLowUnit ? lowWorks : highWorks;
    if (works && !SendTo(command)) works = ReportFailure();
  }
  return silenced && lowWorks && highWorks;
}

bool IfiAmp::IfiSetBand(double frequencyMHz) {
  if (mode_ != AmpControl::Ifi) return true;
  if (frequencyMHz == 0) return IfiReset();
  const Band wanted = frequencyMHz <= bandSwitchMHz_ ? Band::Low : Band::High;
  if (wanted == band_) return true;
  if (!sigGen_.SilenceOrReport()) return false;  // the amplifiers never change over under power
  return wanted == Band::Low ? SelectLow() : SelectHigh();
}

bool IfiAmp::SelectLow() {
  if (!SendAll({{kLowUnit, "8"},
                {kHighUnit, "FA"},
                {kHighUnit, "L3"},
                {kHighUnit, "M1"},
                {kHighUnit, "ON"},
                {kHighUnit, "B1"},
                {kLowUnit, "9"}})) {
    return false;
  }
  shell_.delay.Delay(kBandChangeSeconds, false);
  band_ = Band::Low;
  return SendAll({{kHighUnit, "ZA"}});
}

bool IfiAmp::SelectHigh() {
  if (!SendAll({{kHighUnit, "FA"},
                {kLowUnit, "8"},
                {kHighUnit, "L3"},
                {kHighUnit, "M1"},
                {kHighUnit, "ON"},
                {kHighUnit, "B2"}})) {
    return false;
  }
  shell_.delay.Delay(kBandChangeSeconds, false);
  if (!SendAll({{kHighUnit, "ZA"}})) return false;
  band_ = Band::High;
  return true;
}

bool IfiAmp::IfiReadPower(float& first, float& second) {
  if (mode_ != AmpControl::Ifi) {
    first = second = -1;
    return true;
  }
  if (band_ == Band::None) return false;
  const bool low = band_ == Band::Low;
  const int unit = low ? kLowUnit : kHighUnit;
  if (!SendAll({{unit, "RP"}})) return false;
  std::string answer;
  if (!gpib_.Receive(unit, answer, gpib::kStopEnd, kPowerAnswerSize)) return ReportFailure();
  const PowerTexts texts = low ? SplitColumns(answer) : SplitAtBlank(answer);
  const auto firstFigure = Figure(texts.first), secondFigure = Figure(texts.second);
  if (!firstFigure || !secondFigure) {
    shell_.TellFailure("The amplifier's answer is no power:\r\n" + ShownAnswer(answer));
    return false;
  }
  first = *firstFigure;
  second = *secondFigure;
  return true;
}

bool IfiAmp::SendAll(std::initializer_list<UnitCommand> commands) {
  for (const UnitCommand& command : commands) {
    if (!SendTo(command)) return ReportFailure();
  }
  return true;
}

bool IfiAmp::SendTo(const UnitCommand& command) {
  return gpib_.Send(command.unit, std::string(command.text) + "\r\n");
}

bool IfiAmp::ReportFailure() {
  gpib_.Report("Error sending command to amps");
  return false;
}

}  // namespace hylden
