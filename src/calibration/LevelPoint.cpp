// One frequency of a level calibration: tune, find the level, record it.

#include <algorithm>

#include "calibration/LevelCalibration.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "run/RunDisplay.h"
#include "shell/Shell.h"

namespace hylden {

bool LevelCalibration::CalibratePoint(double frequencyMHz) {
  point_ = {};
  point_.Freq = frequencyMHz;
  display_.Show(Readout::Frequency, frequencyMHz);
  const bool hasBands = documents_.equip.Record.HasIfiAmplifier();
  if (hasBands && !guard_.Ok(instruments_.ifiAmp.IfiSetBand(frequencyMHz))) return false;
  if (!FindTarget() || !TuneMeter() || !TuneGenerator() || !TunePowerMeter() || !FindLevel()) return false;
  if (Halted()) {
    shell_.delay.ClearHalt();
    return false;
  }
  return Record();
}

bool LevelCalibration::FindTarget() {
  const std::optional<double> target = TargetDbuv(setup_, testLevels_, point_.Freq);
  if (!target) return guard_.Fail("Error interpolating limit");
  const auto loss = cableLoss_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(loss, "error interpolating cable loss")) return false;
  point_.Target = *target;
  point_.CableLoss = double{*loss};
  display_.Show(Readout::CableLoss, point_.CableLoss);
  return true;
}

bool LevelCalibration::TuneMeter() {
  Meter& meter = instruments_.meter;
  return guard_.Ok(meter.MeterSetFreq(point_.Freq)) &&
         guard_.Ok(meter.MeterSetLevel(point_.Target - point_.CableLoss - couplingFactor_));
}

bool LevelCalibration::TuneGenerator() {
  if (Halted() || (setup_.RecordsForward() && !guard_.Ok(sensor_.Place(point_.Freq)))) return false;
  SigGen& sigGen = instruments_.sigGen;
  return guard_.Ok(sigGen.SetFreqLevel(point_.Freq, sigGenLevel_)) && guard_.Ok(sigGen.RfOn());
}

bool LevelCalibration::TunePowerMeter() {
  if (!setup_.RecordsForward()) return true;
  if (!guard_.Ok(instruments_.pm.PwrMtrSetFreq(point_.Freq))) return false;
  const auto forward = forwardPort_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(forward, "Error interpolating forward coupler factor")) return false;
  point_.ForwardFactor = double{*forward};
  if (!setup_.RecordsReverse()) return true;
  const auto reverse = reversePort_.InterpVal(point_.Freq, FreqScale::Linear);
  if (!guard_.Ok(reverse, "Error interpolating reverse coupler factor")) return false;
  point_.ReverseFactor = double{*reverse};
  return true;
}

bool LevelCalibration::FindLevel() {
  Convergence convergence;
  for (;;) {
    if (!SetLevelAndDwell() || !ReadLevel()) return false;
    if (InTolerance(point_.Level, point_.Target, kToleranceDb)) return true;
    if (Halted()) return false;
    const double step = std::min(NextLevelStep(point_.Level, point_.Target, kToleranceDb), double{setup_.MaxStep});
    if (!convergence.GoesOn(step))
      return guard_.Fail("The level does not settle within the tolerance band, check setup");
    if (!ChangeLevel(step)) return false;
  }
}

bool LevelCalibration::SetLevelAndDwell() {
  display_.Status("Setting level...");
  const Done set = instruments_.sigGen.SetFreqLevel(point_.Freq, sigGenLevel_);
  display_.Show(Readout::SigGenLevel, sigGenLevel_);
  if (!guard_.Ok(set)) return false;
  display_.Status("Dwelling...");
  shell_.delay.StartDelay(setup_.Dwell);
  return shell_.delay.WaitDelay(true, &display_);
}

bool LevelCalibration::ReadLevel() {
  display_.Status("Reading...");
  // On a shared address the trigger would disturb the power reading.
  const bool shared = instruments_.meter.Address() == instruments_.pm.Address();
  if (!shared && !guard_.Ok(instruments_.meter.MeterTrigger())) return false;
  const EquipRecord& equipment = documents_.equip.Record;
  const bool readsAmplifier = equipment.HasIfiAmplifier() && equipment.IfiPower;
  if (readsAmplifier && !guard_.Ok(instruments_.ifiAmp.IfiReadPower())) return false;
  return (!setup_.RecordsForward() || ReadForwardPower()) && ReadMeter();
}

bool LevelCalibration::ReadForwardPower() {
  const std::optional<double> reading = guard_.Reading(sensor_.Read());
  if (!reading) return false;
  const double powerDbm = *reading + point_.ForwardFactor;
  point_.ForwardDbm = IsMissing(*reading) ? std::nullopt : std::optional(powerDbm);
  point_.ForwardWatts = Conversions::DbmToWatts(powerDbm);
  display_.Show(Readout::ForwardPower, powerDbm);
  if (!setup_.LimitsForward() || point_.ForwardWatts <= double{setup_.FwdPwrLimit}) return true;
  return guard_.Fail("Forward power limit exceeded");
}

bool LevelCalibration::ReadMeter() {
  const std::optional<double> reading = guard_.Reading(instruments_.meter.MeterRead(ReadMode::Single));
  if (!reading) return false;
  display_.Show(Readout::MeterLevel, reading);
  point_.Level = *reading + couplingFactor_ + point_.CableLoss;
  display_.Show(Readout::TestLevel, point_.Level);
  return true;
}

bool LevelCalibration::ChangeLevel(double stepDb) {
  if (setup_.LimitsForward() && ForwardHeadroom(double{setup_.FwdPwrLimit}, point_.ForwardWatts) < stepDb)
    return guard_.Fail("Not able to increase power the necessary amount, check setup");
  sigGenLevel_ = static_cast<float>(double{sigGenLevel_} + stepDb);
  return sigGenLevel_ <= setup_.MaxLevel ||
         guard_.Fail("Level requested is higher than defined in the calibrations setup");
}

bool LevelCalibration::Record() {
  // The record holds what gives the middle of the tolerance band.
  const double excessDb = point_.Level - point_.Target - kToleranceDb / 2;
  const double levelDbm = double{sigGenLevel_} - excessDb;
  // A test could not replay it.
  if (levelDbm > double{instruments_.sigGen.MaximumLevel()})
    return guard_.Fail("The level found is above the signal generator's maximum level, check setup");
  CalRow& row = rows_.emplace_back(CalRow{point_.Freq, levelDbm, point_.Target});
  const int number = static_cast<int>(rows_.size());
  if (point_.ForwardDbm) row.FwdPwr = *point_.ForwardDbm - excessDb;
  row.Complete = !setup_.RecordsReverse();
  display_.RowChanged(number);
  if (!row.Complete && !ReadReversePower(excessDb, row)) return false;
  display_.RowChanged(number);
  // The correction never takes the next frequency above the highest level allowed.
  sigGenLevel_ = std::min(static_cast<float>(levelDbm), setup_.MaxLevel);
  return true;
}

bool LevelCalibration::ReadReversePower(double excessDb, CalRow& row) {
  if (!documents_.equip.Record.Is(AmpConfig::DualFwdRev))
    return guard_.Fail("Equipment file says power meter not configured for reverse power readings.");
  const std::optional<double> reading = guard_.Reading(instruments_.pm.ReadPower(2));
  if (!reading) return false;
  if (!IsMissing(*reading)) row.RevPwr = *reading + point_.ReverseFactor - excessDb;
  return row.Complete = true;
}

}  // namespace hylden
