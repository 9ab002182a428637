#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "support/SampleInstruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "support/Told.h"
#include "text/Numbers.h"

namespace hylden {

using Strings = std::vector<std::string>;

/// Gives a driver its definition with a change; `change` takes the definition.
template <class Driver, class Change>
void Redefine(Driver& driver, const Change& change) {
  auto definition = driver.Definition();
  change(definition);
  driver.PutDefinition(definition);
}

/// The scripted station: a shell, the sample instruments and the documents on a ScriptedBus, whose transcript keeps
/// every call. Silent but for what a test scripts, for the drivers; MakeLive puts a little physics behind its bus, for
/// calibrations and test runs. Header only, as TestShell is.
struct TestStation {
  ScriptedBus bus;
  TestShell t{bus};
  Instruments instruments{t.shell};
  Gpib& gpib = instruments.gpib;
  SigGen& sigGen = instruments.sigGen;
  Meter& meter = instruments.meter;
  PM& pm = instruments.pm;
  IfiAmp& ifiAmp = instruments.ifiAmp;
  Documents documents{t.shell, instruments};
  EquipRecord& equipment = documents.equip.Record;

  TestStation() {
    sigGen.PutDefinition(SampleSigGen());
    meter.PutDefinition(SampleMeter());
    pm.PutDefinition(SamplePowerMeter());
  }

  /// What the generator sends reaches the power meter's sensors through an amplifier, and the meter as the test has it;
  /// IFI amplifiers answer when the equipment has them. The cable loses 1 dB.
  /// @param meterReads  what the meter shows, dBuV, when the generator sends this level
  void MakeLive(std::function<double(double levelDbm)> meterReads) {
    meterReads_ = std::move(meterReads);
    bus.transcript.onLine = [this](const std::string& line) { Follow(line); };
    bus.fallback = [this](int address, const std::string& command) { return AnswerOf(address, command); };
    t.dialogs.onShow = [this](const Message&) { rfOnAtMessage = rfOnAtMessage || rfOn; };
    equipment.CableLossFile = t.directory.Write("cable.los", "0.1 1\r\n1000 1\r\n1001 2\r\n");
    equipment.FwdPortFile = equipment.RevPortFile = t.directory.Write("port.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
    equipment.AmpConfiguration = AmpConfig::DualFwdRev;
    Redefine(pm, [](auto& d) { d.Bandswitch = 2, d.SettlingTime = 0.1F; });
    Redefine(meter, [](auto& d) { d.MaximumLevel = 140, d.MinimumLevel = -200, d.SettlingTime = 0.1F; });
  }
  /// Gives the station a pair of IFI amplifiers.
  void UseIfi(double bandSwitchMHz = 2) {
    equipment.AmplifierType = AmpType::Ifi;
    equipment.IfiBandSwitch = bandSwitchMHz;
  }

  // The physics.
  double gainDb = 50;                    ///< from the generator to the forward power
  std::map<double, double> gainErrorDb;  ///< more or less gain at a frequency
  double returnLossDb = 10;              ///< forward over reverse power
  double stepDbm = 0;                    ///< coarse steps that the generator's level comes in
  double generatorDbm = -200, generatorMHz = 0;
  bool rfOn = false;
  bool rfOnAtMessage = false;             ///< RF was on while a message stood
  std::vector<std::string> throwAtLines;  ///< the next bus call of each of these beginnings throws
  double highestDbm = -200;               ///< highest generator level with RF on
  std::map<double, double> highestAt;     ///< the same by frequency

  /// What went over the bus since the last look.
  Strings Took() { return bus.transcript.Take(); }
  /// The same, of an operation that was done.
  Strings Out(const Done& done) {
    EXPECT_TRUE(done);
    return Took();
  }
  /// Sets the generator and switches it on. @return what went out
  Strings RfOnAt(double frequencyMHz, float levelDbm) {
    EXPECT_TRUE(sigGen.SetFreqLevel(frequencyMHz, levelDbm));
    return Out(sigGen.RfOn());
  }
  /// The commands that an instrument got, without line ends.
  Strings Sent(int address) const {
    Strings sent = bus.transcript.SentTo(address);
    for (std::string& command : sent) command.resize(std::min(command.size(), command.find("\\r\\n")));
    return sent;
  }
  /// How often the text was shown in a message.
  int Shown(const std::string& text) const {
    const auto texts = t.dialogs.Texts();
    return static_cast<int>(std::count(texts.begin(), texts.end(), text));
  }
  /// Whether exactly one message was shown that begins with the text.
  testing::AssertionResult ToldOnce(const std::string& beginning) const {
    if (t.dialogs.messages.size() == 1 && t.dialogs.LastText().starts_with(beginning)) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(t.dialogs.Texts()) << " instead of " << beginning;
  }

 private:
  void Follow(const std::string& line) {
    const auto thrown = std::find_if(throwAtLines.begin(), throwAtLines.end(),
                                     [&](const std::string& beginning) { return line.starts_with(beginning); });
    if (thrown != throwAtLines.end()) {
      throwAtLines.erase(thrown);
      throw RuntimeError(ErrorNumber::Overflow);
    }
    if (!line.starts_with("> 18 ") || line.find(" !") != std::string::npos) return;
    const std::string command = line.substr(5);
    if (command.starts_with("POW ")) generatorDbm = LeadingNumber(command.substr(4));
    if (stepDbm > 0) generatorDbm = std::floor(generatorDbm / stepDbm) * stepDbm;
    if (command.starts_with("FREQ ")) generatorMHz = LeadingNumber(command.substr(5));
    if (command.starts_with("OUTP")) rfOn = command == "OUTP ON";
    if (!rfOn) return;
    highestDbm = std::max(highestDbm, generatorDbm);
    double& highest = highestAt.try_emplace(generatorMHz, generatorDbm).first->second;
    highest = std::max(highest, generatorDbm);
  }
  std::optional<std::string> AnswerOf(int address, const std::string& command) {
    const double level = rfOn ? generatorDbm : -140;
    if (address == meter.Address()) return ShortestText(meterReads_(level));
    if (address == pm.Address()) {
      const auto error = gainErrorDb.find(generatorMHz);
      const double forward = level + gainDb + (error == gainErrorDb.end() ? 0 : error->second);
      return ShortestText(command == "BR?" ? forward - returnLossDb : forward);
    }
    return command.starts_with("RP") ? std::optional<std::string>("0100 0200\r\n") : std::nullopt;
  }

  std::function<double(double)> meterReads_;
};

}  // namespace hylden
