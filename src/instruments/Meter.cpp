#include "instruments/Meter.h"

#include <algorithm>
#include <cmath>

#include "instruments/Command.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "Meter";
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

bool Meter::InitMeter() {
  if (!Ready()) return false;
  const std::string init = definition_.InitString.empty() ? "" : definition_.InitString + terminator_.Text;
  if (!gpib_.GpibOpen(Address(), init, kName)) return false;
  currentFreq_ = 0;
  currentReference_ = kNoReference;
  answers_.ForgetTrigger();
  return MeterSetLevel(MaximumLevel() - kReferenceOffsetDb);
}

bool Meter::MeterSetFreq(double frequencyMHz) {
  const double setting = FreqSetting(frequencyMHz);
  const bool inRange = frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq();
  if (!inRange || !std::isfinite(setting)) {
    shell_.TellFailure("Frequency requested exceeds meter's capability. ");
    return false;
  }
  if (frequencyMHz == currentFreq_) return true;
  currentFreq_ = 0;  // until the command has got through, nothing is assumed about the instrument
  if (HasFreqCommand() && !SendCommand(SettingCommand(definition_.FreqSetPrefix, setting, commandpattern::kMeterFreq,
                                                      definition_.FreqSetSuffix, terminator_))) {
    return false;
  }
  currentFreq_ = frequencyMHz;
  return true;
}

double Meter::FreqSetting(double frequencyMHz) const {
  return IsScope() ? kHalfPeriodMHz / frequencyMHz : frequencyMHz;
}

bool Meter::MeterSetLevel(double levelDbuv) {
  if (!(levelDbuv >= MinimumLevel() && levelDbuv <= MaximumLevel())) {
    shell_.TellFailure("Level requested exceeds meter's capability. ");
    return false;
  }
  if (levelDbuv == currentReference_) return true;
  currentReference_ = kNoReference;
  if (HasLevelCommand() && !SendReference(levelDbuv)) return false;
  currentReference_ = levelDbuv;
  return true;
}

bool Meter::SendReference(double levelDbuv) {
  const double commanded = levelDbuv + (IsScope() ? kScopeOffsetDb : kReferenceOffsetDb);
  const auto setting = answers_.Converted(Conversions::DbuvToMeterUnits, definition_.Units, commanded);
  if (!setting) return WriteFailed();
  return SendCommand(SettingCommand(definition_.LevSetPrefix, *setting, LevelPattern(definition_.Units, *setting),
                                    definition_.LevSetSuffix, terminator_));
}

bool Meter::MeterTrigger() {
  if (answers_.Trigger(Address(), definition_.Trigger, SettlingTime())) return true;
  gpib_.Report("Error in writing command to meter. ");
  answers_.ForgetTrigger();
  return false;
}

double Meter::MeterRead(ReadMode mode, double settlingSeconds) {
  const double settle = settlingSeconds == kDefinedSettling ? double{SettlingTime()} : settlingSeconds;
  if (!AwaitCapture(settle)) return ReadFailed();
  if (shell_.delay.HaltRequested()) return kNoReading;
  for (int turn = 0;; ++turn) {
    const auto level = ReadLevel();
    if (!level) return ReadFailed();
    if (*level > MaximumLevel()) return kOverRange;
    const bool isLevel = Last().HasNumber && !IsMissing(*level);  // nothing else says which way to range
    if (mode == ReadMode::Single || !HasLevelCommand() || !isLevel) return *level;
    const auto reference = NextReferenceLevel(*level, currentReference_, MinimumLevel(), MaximumLevel());
    if (!reference) return *level;
    if (turn == kMostRangings) return RangingFailed(*level);
    if (!MeterSetLevel(*reference) || !MeterTrigger()) return ReadFailed();
    shell_.delay.Delay(settle, true);
    if (shell_.delay.HaltRequested()) return *level;
  }
}

bool Meter::AwaitCapture(double settlingSeconds) {
  if (answers_.TriggerPending()) {
    answers_.AwaitPending();
    return true;
  }
  if (!MeterTrigger()) return false;
  shell_.delay.Delay(settlingSeconds, true);
  return true;
}

std::optional<double> Meter::ReadLevel() {
  const auto value = answers_.Read(Address(), definition_.Read, definition_.ParseCmd);
  return value ? answers_.Converted(Conversions::MeterReadingToDbuv, definition_.Units, *value) : std::nullopt;
}

bool Meter::MeterShutdown() {
  if (definition_.Shutdown.empty()) return InitMeter() && gpib_.GpibClose(Address(), kName);
  return SendCommand(definition_.Shutdown + terminator_.Text) && gpib_.GpibClose(Address(), kName);
}

bool Meter::SendCommand(const std::string& command) {
  return gpib_.Send(Address(), command) || WriteFailed();
}

bool Meter::WriteFailed() {
  gpib_.Report("Error in writing command to meter. ");
  return false;
}

double Meter::ReadFailed() {
  answers_.MarkFailed();
  gpib_.Report("Error in reading meter. ");
  return kNoReading;
}

double Meter::RangingFailed(double levelDbuv) {
  answers_.MarkFailed();
  shell_.TellFailure("The meter finds no range for its reading of " + Format(levelDbuv, "##0.0#") +
                     " dBuV,\r\ncheck its definition and the level at its input");
  return kNoReading;
}

}  // namespace hylden
