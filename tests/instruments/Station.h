#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/Instruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"

namespace hylden {

using Strings = std::vector<std::string>;

/// The instruments of a station on a scripted bus.
struct Station {
  ScriptedBus bus;
  TestShell t{bus};
  Instruments on{t.shell};

  /// What went over the bus since the last look.
  Strings Took() { return bus.transcript.Take(); }
  /// Whether exactly one message was shown that begins with the text.
  ::testing::AssertionResult ToldOnce(const std::string& beginning) const {
    if (t.dialogs.messages.size() == 1 && t.dialogs.LastText().starts_with(beginning)) {
      return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << ::testing::PrintToString(t.dialogs.Texts()) << " instead of " << beginning;
  }
};

inline SigGenDefinition SampleSigGen() {
  SigGenDefinition d;
  d.InstrumentName = "Generator";
  d.Address = 18;
  d.InitString = "*RST";
  d.FreqSetPrefix = "FREQ";
  d.FreqSetSuffix = "MHZ";
  d.LevSetPrefix = "POW";
  d.LevSetSuffix = "DBM";
  d.ModulationOff = "MOD OFF";
  d.RfOff = "OUTP OFF";
  d.RfOn = "OUTP ON";
  d.AmFreqPrefix = "AMF";
  d.AmFreqSuffix = "KHZ";
  d.AmDepthPrefix = "AMD";
  d.AmDepthSuffix = "PCT";
  d.AmModOn = "AM ON";
  d.FmFreqPrefix = "FMF";
  d.FmFreqSuffix = "KHZ";
  d.FmDevPrefix = "FMD";
  d.FmDevSuffix = "KHZ";
  d.FmModOn = "FM ON";
  d.PulseFreqPrefix = "PLF";
  d.PulseFreqSuffix = "KHZ";
  d.PulseWidthPrefix = "PLW";
  d.PulseWidthSuffix = "MS";
  d.PulseModOn = "PL ON";
  d.MaximumLevel = 13;
  d.MinimumLevel = -120;
  d.MaximumFreq = 1000;
  d.MinimumFreq = 0.1;
  d.AmCapable = d.FmCapable = d.PulseCapable = 1;
  return d;
}

inline MeterDefinition SampleMeter() {
  MeterDefinition d;
  d.InstrumentName = "Analyser";
  d.Address = 13;
  d.InitString = "IP";
  d.FreqSetPrefix = "CF";
  d.FreqSetSuffix = "MZ";
  d.LevSetPrefix = "RL";
  d.LevSetSuffix = "DB";
  d.Read = "MA?";
  d.Trigger = "TS";
  d.Shutdown = "BYE";
  d.Units = 1;
  d.MaximumLevel = 120;
  d.MinimumLevel = 20;
  d.MaximumFreq = 1000;
  d.MinimumFreq = 0.1;
  d.SettlingTime = 0.5F;
  return d;
}

inline PowerMeterDefinition SamplePowerMeter() {
  PowerMeterDefinition d;
  d.InstrumentName = "Power meter";
  d.Address = 7;
  d.InitString = "PR";
  d.FreqSetPrefix = "FR";
  d.FreqSetSuffix = "MZ";
  d.SelectCh1 = "AP";
  d.SelectCh2 = "BP";
  d.Ch1Read = "AR?";
  d.Ch2Read = "BR?";
  d.Ch1Trigger = "AT";
  d.Ch2Trigger = "BT";
  d.Bandswitch = 215;
  d.Shutdown = "BYE";
  d.Units = 1;
  d.Type = 1;
  d.MaximumFreq = 1000;
  d.MinimumFreq = 0.1;
  d.SettlingTime = 0.5F;
  return d;
}

}  // namespace hylden
