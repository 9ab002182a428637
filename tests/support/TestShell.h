#pragma once

#include "platform/VirtualTime.h"
#include "shell/Shell.h"
#include "support/FakeDialogs.h"
#include "support/FakePrinter.h"
#include "support/FakeSpeaker.h"
#include "support/ScriptedBus.h"
#include "support/TempDir.h"

namespace hylden {

/// The shell alone, on a machine of fakes and with a program directory that is temporary: for what needs no station.
/// TestStation and DemoStation are the two others that tests run on. Header only, since folders below shell link the
/// support library too.
///   TestShell t;                                                          // where no bus matters
///   ScriptedBus bus;  TestShell t(bus);                                   // a clock of its own
///   VirtualClock clock;  SomeBus bus(clock);  TestShell t(bus, clock);    // the clock that the bus runs on
class TestShell {
 public:
  TestShell() : TestShell(ownBus_, nullptr) {}
  explicit TestShell(GpibDriver& gpib) : TestShell(gpib, nullptr) {}
  TestShell(GpibDriver& gpib, VirtualClock& sharedClock) : TestShell(gpib, &sharedClock) {}

 private:
  VirtualClock ownClock_;
  ScriptedBus ownBus_;

 public:
  TempDir directory;
  VirtualClock& clock;
  VirtualEventLoop events;
  FakeDialogs dialogs;
  FakeSpeaker speaker;
  FakePrinter printer;
  Shell shell;

 private:
  TestShell(GpibDriver& gpib, VirtualClock* sharedClock)
      : clock(sharedClock ? *sharedClock : ownClock_),
        events(clock),
        shell(Platform{dialogs, clock, events, speaker, printer, gpib}, directory.Path()) {}
};

}  // namespace hylden
