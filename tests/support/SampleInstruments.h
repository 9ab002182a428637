#pragma once

#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"

namespace hylden {

// Instruments with a short command for everything that they can do, without line ends: generator 18, meter 13, power
// meter 7.

inline SigGenDefinition SampleSigGen() {
  SigGenDefinition d;
  d.InstrumentName = "Generator", d.Address = 18, d.InitString = "*RST";
  d.FreqSetPrefix = "FREQ", d.FreqSetSuffix = "MHZ", d.LevSetPrefix = "POW", d.LevSetSuffix = "DBM";
  d.ModulationOff = "MOD OFF", d.RfOff = "OUTP OFF", d.RfOn = "OUTP ON";
  d.AmFreqPrefix = "AMF", d.AmFreqSuffix = "KHZ", d.AmDepthPrefix = "AMD", d.AmDepthSuffix = "PCT";
  d.FmFreqPrefix = "FMF", d.FmFreqSuffix = "KHZ", d.FmDevPrefix = "FMD", d.FmDevSuffix = "KHZ";
  d.PulseFreqPrefix = "PLF", d.PulseFreqSuffix = "KHZ", d.PulseWidthPrefix = "PLW", d.PulseWidthSuffix = "MS";
  d.AmModOn = "AM ON", d.FmModOn = "FM ON", d.PulseModOn = "PL ON";
  d.MaximumLevel = 13, d.MinimumLevel = -120, d.MaximumFreq = 1000, d.MinimumFreq = 0.1;
  d.AmCapable = d.FmCapable = d.PulseCapable = 1;
  return d;
}

inline MeterDefinition SampleMeter() {
  MeterDefinition d;
  d.InstrumentName = "Analyser", d.Address = 13, d.InitString = "IP", d.Units = 1;
  d.FreqSetPrefix = "CF", d.FreqSetSuffix = "MZ", d.LevSetPrefix = "RL", d.LevSetSuffix = "DB";
  d.Read = "MA?", d.Trigger = "TS", d.Shutdown = "BYE";
  d.MaximumLevel = 120, d.MinimumLevel = 20, d.MaximumFreq = 1000, d.MinimumFreq = 0.1, d.SettlingTime = 0.5F;
  return d;
}

inline PowerMeterDefinition SamplePowerMeter() {
  PowerMeterDefinition d;
  d.InstrumentName = "Power meter", d.Address = 7, d.InitString = "PR", d.Units = d.Type = 1;
  d.FreqSetPrefix = "FR", d.FreqSetSuffix = "MZ", d.SelectCh1 = "AP", d.SelectCh2 = "BP";
  d.Ch1Read = "AR?", d.Ch2Read = "BR?", d.Ch1Trigger = "AT", d.Ch2Trigger = "BT", d.Shutdown = "BYE";
  d.MaximumFreq = 1000, d.MinimumFreq = 0.1, d.SettlingTime = 0.5F, d.Bandswitch = 215;
  return d;
}

}  // namespace hylden
