#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "instruments/Instruments.h"
#include "support/SampleInstruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "support/Told.h"

namespace hylden {

using Strings = std::vector<std::string>;

/// Gives a driver its definition with a change; `change` takes the definition.
template <class Driver, class Change>
void Redefine(Driver& driver, const Change& change) {
  auto definition = driver.Definition();
  change(definition);
  driver.PutDefinition(definition);
}

/// A shell and its instruments, the samples, on a scripted bus. Header only, as TestShell is.
struct TestStation {
  ScriptedBus bus;
  TestShell t{bus};
  Instruments instruments{t.shell};
  Gpib& gpib = instruments.gpib;
  SigGen& sigGen = instruments.sigGen;
  Meter& meter = instruments.meter;
  PM& pm = instruments.pm;
  IfiAmp& ifiAmp = instruments.ifiAmp;

  TestStation() {
    sigGen.PutDefinition(SampleSigGen());
    meter.PutDefinition(SampleMeter());
    pm.PutDefinition(SamplePowerMeter());
  }

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
  /// Whether exactly one message was shown that begins with the text.
  testing::AssertionResult ToldOnce(const std::string& beginning) const {
    if (t.dialogs.messages.size() == 1 && t.dialogs.LastText().starts_with(beginning)) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << testing::PrintToString(t.dialogs.Texts()) << " instead of " << beginning;
  }
};

}  // namespace hylden
