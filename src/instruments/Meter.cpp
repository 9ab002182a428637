#include "instruments/Meter.h"

#include <algorithm>
#include <cmath>

#include "instruments/Command.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "Meter";
constexpr const char* kWriteFailed = "Error in writing command to meter. ";
// The reference sits above the wanted level; a scope's full scale is a peak value on both sides of zero.
constexpr double kReferenceOffsetDb = 2.0, kScopeOffsetDb = -6.8;
constexpr double kHalfPeriodMHz = 5e-7;  // half a period in seconds, times the frequency in MHz

std::string_view LevelPattern(std::int32_t units, double setting) {
  constexpr double kSmall = 1e-4;
  const bool linear = Conversions::IsLinear(static_cast<Conversions::MeterUnits>(units));
  return linear && setting < kSmall ? commandpattern::kSmallMeterLevel : commandpattern::kMeterLevel;
}

}  // namespace

std::optional<double> NextReferenceLevel(double levelDbuv, double referenceDbuv, double minimumDbuv,
                                         double maximumDbuv) {
  if (levelDbuv >= referenceDbuv) return std::min(levelDbuv + 10, maximumDbuv);
  if (levelDbuv >= referenceDbuv - 6) return std::nullopt;
  const double lower = std::max({levelDbuv + 3, referenceDbuv - 10, minimumDbuv});
  return lower < referenceDbuv ? std::optional(lower) : std::nullopt;
}

Done Meter::InitMeter() {
  if (Done opened = Open(kName); !opened) return opened;
  ForgetSettings();
  return MeterSetLevel(MaximumLevel() - kReferenceOffsetDb);
}

void Meter::ForgetSettings() {
  currentFreq_ = 0;
  currentReference_ = kNoReference;
  answers_.ForgetTrigger();
}

Done Meter::MeterSetFreq(double frequencyMHz) {
  const double setting = FreqSetting(frequencyMHz);
  const bool inRange = frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq();
  if (!inRange || !std::isfinite(setting)) return Because("Frequency requested exceeds meter's capability. ");
  if (frequencyMHz == currentFreq_) return {};
  currentFreq_ = 0;  // until the command has got through, nothing is assumed about the instrument
  const Done sent =
      HasFreqCommand() ? SendCommand(FreqCommand(setting, commandpattern::kMeterFreq), kWriteFailed) : Done();
  return sent.map([&] { currentFreq_ = frequencyMHz; });
}

double Meter::FreqSetting(double frequencyMHz) const {
  return IsScope() ? kHalfPeriodMHz / frequencyMHz : frequencyMHz;
}

Done Meter::MeterSetLevel(double levelDbuv) {
  if (!(levelDbuv >= MinimumLevel() && levelDbuv <= MaximumLevel()))
    return Because("Level requested exceeds meter's capability. ");
  if (levelDbuv == currentReference_) return {};
  currentReference_ = kNoReference;
  Done sent = HasLevelCommand() ? SendReference(levelDbuv) : Done();
  return sent.map([&] { currentReference_ = levelDbuv; });
}

Done Meter::SendReference(double levelDbuv) {
  const double commanded = levelDbuv + (IsScope() ? kScopeOffsetDb : kReferenceOffsetDb);
  const Result<double> setting = answers_.Converted(Conversions::DbuvToMeterUnits, definition_.Units, commanded);
  if (!setting) return Because(Failure(setting.error()).Add(gpib_.GpibError(kWriteFailed)));
  return SendCommand(SettingCommand(definition_.LevSetPrefix, *setting, LevelPattern(definition_.Units, *setting),
                                    definition_.LevSetSuffix),
                     kWriteFailed);
}

Done Meter::MeterTrigger() {
  if (answers_.Trigger(Address(), definition_.Trigger, SettlingTime())) return {};
  answers_.ForgetTrigger();
  return Because(gpib_.GpibError(kWriteFailed));
}

Result<double> Meter::MeterRead(ReadMode mode, double settlingSeconds) {
  const double settle = settlingSeconds == kDefinedSettling ? double{SettlingTime()} : settlingSeconds;
  if (const Done captured = AwaitCapture(settle); !captured) return ReadFailed(captured.error());
  for (int turn = 0; !shell_.delay.HaltRequested(); ++turn) {
    const Result<double> answered = ReadLevel();
    if (!answered) return ReadFailed(answered.error());
    Result<double> level = Judged(*answered);
    if (!level || mode == ReadMode::Single || !HasLevelCommand()) return level;
    const auto reference = NextReferenceLevel(*level, currentReference_, MinimumLevel(), MaximumLevel());
    if (!reference) return level;
    if (turn == kMostRangings)
      return Because("The meter finds no range for its reading of " + Format(*level, "##0.0#") +
                     " dBuV,\r\ncheck its definition and the level at its input");
    const Done ranged = MeterSetLevel(*reference).and_then([&] { return MeterTrigger(); });
    if (!ranged) return ReadFailed(ranged.error());
    shell_.delay.Delay(settle, true);
  }
  return Because();
}

Done Meter::AwaitCapture(double settlingSeconds) {
  if (answers_.TriggerPending()) {
    answers_.AwaitPending();
    return {};
  }
  return MeterTrigger().map([&] { shell_.delay.Delay(settlingSeconds, true); });
}

Result<double> Meter::ReadLevel() {
  return answers_.Read(Address(), definition_.Read, definition_.ParseCmd).and_then([&](double value) {
    return answers_.Converted(Conversions::MeterReadingToDbuv, definition_.Units, value);
  });
}

Result<double> Meter::Judged(double levelDbuv) const {
  if (const Done number = answers_.HoldsNumber("meter", "level"); !number) return Because(number.error());
  if (IsMissing(levelDbuv)) return Because(answers_.NoQuantity("meter", "level"));  // of a voltage below 0
  if (levelDbuv > MaximumLevel()) return Because("The level is above the meter's maximum level, check setup");
  return levelDbuv;
}

Done Meter::MeterShutdown() {
  const Done offline = definition_.Shutdown.empty() ? InitMeter() : SendCommand(definition_.Shutdown, kWriteFailed);
  return offline.and_then([&] { return gpib_.GpibClose(Address(), kName); });
}

tl::unexpected<Failure> Meter::ReadFailed(Failure cause) const {
  return Because(cause.Add(gpib_.GpibError("Error in reading meter. ")));
}

}  // namespace hylden
