#include "run/InstrumentsUp.h"

#include <exception>
#include <utility>

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "run/RunGuard.h"
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

bool InstrumentsUp::IsUp(const Done& done, const char* otherwise) {
  return guard_.Ok(done, otherwise, MessageIcon::Critical);
}

bool InstrumentsUp::BringUpSigGen() {
  rfSwitchedOff_ = false;
  up_.SigGen = Generator::Unknown;
  if (!IsUp(instruments_.gpib.GpibIfc(), "Error initializing GPIB")) return false;
  if (!IsUp(instruments_.sigGen.InitSigGen(0, kStartLevelDbm), "Error initializing signal generator")) return false;
  up_.SigGen = Generator::Up;
  return true;
}

bool InstrumentsUp::BringUpPowerMeter() {
  return up_.PwrMtr = IsUp(instruments_.pm.InitPwrMtr(), "Error initializing Power Meter");
}

bool InstrumentsUp::BringUpMeter() {
  return up_.Meter = IsUp(instruments_.meter.InitMeter(), "Error initializing meter");
}

bool InstrumentsUp::BringUpAmplifier(const EquipRecord& equipment) {
  IfiAmp& ifiAmp = instruments_.ifiAmp;
  up_.IfiAmp = equipment.HasIfiAmplifier();  // one that fails half-way has got commands, too
  const Done initialized = up_.IfiAmp ? ifiAmp.IfiInit(AmpControl::Ifi, equipment.IfiBandSwitch)
                                      : ifiAmp.IfiInit(AmpControl::Generic, kGenericBandSwitchMHz);
  return IsUp(initialized, "Error initializing IFI amp");
}

void InstrumentsUp::CloseSigGen() {
  if (up_.SigGen != Generator::Up) return;
  (void)instruments_.sigGen.SilenceRf();  // what stays up is tried again, and told then
  const Done closed = instruments_.sigGen.ShutdownSigGen();
  if (closed) up_.SigGen = Generator::Closed;
  Note(closed);
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
        if (up.Meter) Note(instruments_.meter.MeterShutdown());
      },
      [&] {
        if (up.IfiAmp) Note(instruments_.ifiAmp.IfiReset());
      },
      [&] {
        if (up.PwrMtr) Note(instruments_.pm.PwrMtrShutdown());
      },
      [&] {
        if (up.SigGen == Generator::Up) Note(instruments_.sigGen.ShutdownSigGen());
      },
  };
  // The amplifiers are the last means left to end the RF, and a dead meter is waited for.
  if (instruments_.sigGen.RfIsOn()) std::swap(actions[0], actions[1]);
  RunAll(actions);
}

void InstrumentsUp::Conclude() {
  guard_.RfOff();
  // Whatever came up half-way, or failed on its way down, which is told then.
  if (const Done closed = instruments_.gpib.CloseAll(); down_) Note(closed);
  guard_.Ok(std::exchange(down_, {}));
  if (instruments_.sigGen.RfIsOn()) shell_.dialogs.Tell(kRfMayBeOn, MessageIcon::Critical);
}

}  // namespace hylden
