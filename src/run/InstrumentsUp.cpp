#include "run/InstrumentsUp.h"

#include <exception>
#include <utility>

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr float kStartLevelDbm = -60;
constexpr double kGenericBandSwitchMHz = 230;
constexpr const char* kRfMayBeOn = "RF could not be switched off: switch the amplifier off by hand.";

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
  rfSwitchedOff_ = false;
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
  up_.IfiAmp = true;  // one that fails half-way has got commands, too
  return instruments_.ifiAmp.IfiInit(AmpControl::Ifi, equipment.IfiBandSwitch) || Refuse("Error initializing IFI amp");
}

void InstrumentsUp::CloseSigGen() {
  if (up_.SigGen != Generator::Up) return;
  instruments_.sigGen.SilenceRf();
  if (instruments_.sigGen.ShutdownSigGen()) up_.SigGen = Generator::Closed;
}

void InstrumentsUp::SwitchRfOff() {
  if (rfSwitchedOff_) return;
  // A generator that didn't come up may have been sending before the program found it.
  rfSwitchedOff_ = up_.SigGen == Generator::Closed || instruments_.sigGen.SilenceRf();
}

void InstrumentsUp::TakeDown() {
  RunAll({
      [&] { SwitchRfOff(); },
      [&] { TakeInstrumentsDown(); },
      [&] { Conclude(); },
  });
}

void InstrumentsUp::TakeInstrumentsDown() {
  const State up = std::exchange(up_, {});
  rfSwitchedOff_ = false;
  std::vector<std::function<void()>> actions = {
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
  };
  // The amplifiers are the last means left to end the RF, and a dead meter is waited for.
  if (instruments_.sigGen.RfIsOn()) std::swap(actions[0], actions[1]);
  RunAll(actions);
}

void InstrumentsUp::Conclude() {
  const SigGen& sigGen = instruments_.sigGen;
  if (sigGen.RfIsOn()) instruments_.sigGen.SilenceRf();
  shell_.ShowFailure();
  if (sigGen.RfIsOn()) shell_.dialogs.Tell(kRfMayBeOn, MessageIcon::Critical);
}

bool InstrumentsUp::Refuse(const char* text) {
  shell_.ShowFailure(text, MessageIcon::Critical);
  return false;
}

}  // namespace hylden
