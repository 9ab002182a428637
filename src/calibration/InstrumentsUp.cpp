#include "calibration/InstrumentsUp.h"

#include <exception>
#include <utility>

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr float kStartLevelDbm = -60;
constexpr double kGenericBandSwitchMHz = 230;

}  // namespace

void RunAll(const std::vector<std::function<void()>>& actions) {
  std::exception_ptr first;
  for (const auto& action : actions) {
    try {
      action();
    } catch (...) {
      if (!first) first = std::current_exception();
    }
  }
  if (first) std::rethrow_exception(first);
}

bool InstrumentsUp::BringUpSigGen() {
  up_.SigGen = Generator::Unknown;
  if (!instruments_.gpib.GpibIfc()) return Refuse("Error initializing GPIB");
  if (!instruments_.sigGen.InitSigGen(0, kStartLevelDbm)) return Refuse("Error initializing signal generator");
  up_.SigGen = Generator::Up;
  return true;
}

bool InstrumentsUp::BringUpPowerMeter() {
  if (!instruments_.pm.InitPwrMtr()) return Refuse("Error initializing Power Meter");
  up_.PwrMtr = true;
  return true;
}

bool InstrumentsUp::BringUpMeter() {
  if (!instruments_.meter.InitMeter()) return Refuse("Error initializing meter");
  up_.Meter = true;
  return true;
}

bool InstrumentsUp::BringUpAmplifier(const EquipRecord& equipment) {
  if (!equipment.HasIfiAmplifier()) return instruments_.ifiAmp.IfiInit(AmpControl::Generic, kGenericBandSwitchMHz);
  if (!instruments_.ifiAmp.IfiInit(AmpControl::Ifi, equipment.IfiBandSwitch))
    return Refuse("Error initializing IFI amp");
  up_.IfiAmp = true;
  return true;
}

void InstrumentsUp::CloseSigGen() {
  if (up_.SigGen != Generator::Up) return;
  instruments_.sigGen.SilenceRf();
  if (instruments_.sigGen.ShutdownSigGen()) up_.SigGen = Generator::Closed;
}

void InstrumentsUp::TakeDown() {
  const State up = std::exchange(up_, {});
  RunAll({
      [&] { SwitchRfOff(up.SigGen); },
      [&] {
        if (up.Meter) instruments_.meter.MeterShutdown();
      },
      [&] {
        if (up.IfiAmp) instruments_.ifiAmp.IfiReset();
      },
      [&] {
        if (up.PwrMtr) instruments_.pm.PwrMtrShutdown();
      },
      [&] {
        if (up.SigGen == Generator::Up) instruments_.sigGen.ShutdownSigGen();
      },
  });
}

void InstrumentsUp::SwitchRfOff(Generator state) {
  if (state == Generator::Up) instruments_.sigGen.SilenceRf();
  // A generator that didn't come up may have been sending before the program found it.
  if (state == Generator::Unknown) instruments_.sigGen.TryRfOff();
}

bool InstrumentsUp::Refuse(const char* text) {
  shell_.dialogs.Tell(text, MessageIcon::Critical);
  return false;
}

}  // namespace hylden
