#include "instruments/BusPanel.h"

#include <gmock/gmock.h>

#include "support/SilentRun.h"
#include "support/TestStation.h"

namespace hylden {
namespace {

constexpr const char* kTaken = "Another run is using the instruments";

struct BusPanelTest : testing::Test, TestStation {
  BusPanel panel{t.shell, instruments};

  void SetUp() override {
    bus.fallback = [](int, const std::string&) { return "72.5\r\n"; };
    ASSERT_TRUE(gpib.GpibIfc());
    Took();
  }
  /// What the command came to, as the window shows it.
  static std::string Shown(const BusPanel::Outcome& outcome) {
    if (outcome) return *outcome;
    const Strings told = Told(outcome);
    return "not done: " + (told.empty() ? std::string() : told.front());
  }
};

struct CommandCase {
  const char* name;
  std::function<BusPanel::Outcome(BusPanel&)> Command;
  Strings Bus;
  const char *Shown, *WhenItFails;
};

const CommandCase kCommands[] = {
    {"send",
     [](BusPanel& p) { return p.Send(7, "AP", LineEnd::None); },
     {"> 7 AP"},
     "Sent to 7",
     "Nothing was sent to 7: "},
    {"cr",
     [](BusPanel& p) { return p.Send(7, "AP", LineEnd::Cr); },
     {"> 7 AP\\r"},
     "Sent to 7",
     "Nothing was sent to 7: "},
    {"generator",
     [](BusPanel& p) { return p.Send(18, "OUTP ON", LineEnd::Lf); },
     {"> 18 OUTP ON\\n"},
     "Sent to 18: RF may be on",
     "Nothing was sent to 18: "},
    {"ask",
     [](BusPanel& p) { return p.Ask(13, "MA?", LineEnd::CrLf); },
     {"> 13 MA?\\r\\n", "< 13 72.5\\r\\n"},
     R"("72.5\r\n" 6 END)",
     "Nothing was sent to 13: "},
    {"read",
     [](BusPanel& p) { return p.Read(13, LineEnd::None); },
     {"< 13 72.5\\r\\n"},
     R"("72.5\r\n" 6 EOI)",
     "No answer from 13: "},
    {"local", [](BusPanel& p) { return p.Local(7); }, {"LOCAL 7"}, "7 is local", "7 is not local: "},
    {"clear",
     [](BusPanel& p) { return p.ClearInterface(); },
     {"IFC", "TMO 13"},
     "The interface is cleared",
     "The interface can't be cleared: "},
};

TEST_F(BusPanelTest, CommandsGoOutAsTheyAreAndTellWhatTheyCameTo) {
  for (const CommandCase& c : kCommands) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Shown(c.Command(panel)), c.Shown);
    EXPECT_EQ(Took(), c.Bus);
    bus.FailCall(1, gpib::kEnol);
    bus.advice = "Look at the cable.";
    const std::string shown = Shown(c.Command(panel));
    EXPECT_TRUE(shown.starts_with("not done: " + std::string(c.WhenItFails) +
                                  "nobody listens there (ENOL). Look at the cable."))
        << shown;
    bus.advice.clear();
    panel.End();
    Took();
  }
  EXPECT_EQ(t.dialogs.Texts(), Strings{});
}

TEST_F(BusPanelTest, WhileARunHasTheInstrumentsNothingIsSent) {
  SilentRun run;
  ASSERT_TRUE(t.shell.ClaimInstruments(run));
  EXPECT_EQ(panel.Obstacle(), kTaken);
  for (const CommandCase& c : kCommands) EXPECT_EQ(Shown(c.Command(panel)), std::string("not done: ") + kTaken);
  panel.End();
  EXPECT_EQ(Took(), Strings{});
  EXPECT_EQ(t.shell.AtWork(), &run);
  t.shell.ReleaseInstruments();
}

TEST_F(BusPanelTest, HoweverItEndsRfIsOffAndTheDevicesAreLocal) {
  const std::pair<const char*, std::function<void(BusPanel&)>> ends[] = {{"closed", [](BusPanel& p) { p.End(); }},
                                                                         {"given way", [this](BusPanel&) {
                                                                            SilentRun run;
                                                                            EXPECT_TRUE(t.shell.ClaimInstruments(run));
                                                                            t.shell.ReleaseInstruments();
                                                                          }}};
  for (const auto& [how, end] : ends) {
    SCOPED_TRACE(how);
    EXPECT_TRUE(panel.Send(7, "AP", LineEnd::None));
    EXPECT_FALSE(panel.RfMayBeOn());
    EXPECT_TRUE(panel.Send(18, "OUTP ON", LineEnd::None));
    EXPECT_TRUE(panel.RfMayBeOn());
    Took();
    end(panel);
    EXPECT_EQ(Took(), (Strings{"> 18 OUTP OFF", "LOCAL 7", "LOCAL 18"}));
    EXPECT_FALSE(t.shell.InstrumentsClaimed() || sigGen.RfIsOn());
  }
  {
    BusPanel other(t.shell, instruments);
    EXPECT_TRUE(other.Send(18, "OUTP ON", LineEnd::None));
    Took();
  }
  EXPECT_EQ(Took(), (Strings{"> 18 OUTP OFF", "LOCAL 18"}));
  EXPECT_FALSE(t.shell.InstrumentsClaimed());
}

TEST_F(BusPanelTest, WhateverFailsSwitchesOffTheRfThatACommandMayHaveSwitchedOn) {
  const auto read = [this] { return panel.Read(13, LineEnd::None); };
  EXPECT_TRUE(panel.Send(18, "OUTP ON", LineEnd::None));
  bus.Silence(13);
  EXPECT_EQ(Shown(read()),
            "not done: No answer from 13: nothing came within the time limit (EABO TIMO). RF was switched off.");
  EXPECT_FALSE(sigGen.RfIsOn());
  // A command that failed may have arrived all the same.
  Took();
  bus.FailLine("> 18 OUTP ON", gpib::kEabo);
  EXPECT_FALSE(panel.Send(18, "OUTP ON", LineEnd::None));
  EXPECT_THAT(Took(), testing::Contains("> 18 OUTP OFF"));

  EXPECT_TRUE(panel.Send(18, "OUTP ON", LineEnd::None));
  bus.ThrowAtCall(1);
  EXPECT_ANY_THROW((void)read());
  EXPECT_FALSE(sigGen.RfIsOn() || t.shell.InstrumentsClaimed());
}

TEST_F(BusPanelTest, AGeneratorThatCanNotBeSilencedIsTold) {
  EXPECT_TRUE(panel.Send(18, "OUTP ON", LineEnd::None));
  bus.Kill(18);
  EXPECT_EQ(Shown(panel.EndRf()), "not done: " + std::string(kRfMayBeOn));
  panel.End();
  EXPECT_EQ(t.dialogs.Texts(), Strings{kRfMayBeOn});
  EXPECT_TRUE(sigGen.RfIsOn());
}

TEST_F(BusPanelTest, ListsWhoListens) {
  for (int address = 0; address <= 30; ++address)
    if (address != 7 && address != 18) bus.absent.insert(address);
  EXPECT_EQ(Shown(panel.FindListeners()), "Listeners at 7, 18");
  // Another way, which is not there, hides nobody.
  bus.wayOf = [](int address) { return address == 0 ? "a" : "b"; };
  bus.FailLine("FIND 0", 11);
  EXPECT_EQ(Shown(panel.FindListeners()),
            "Listeners at 7, 18. Elsewhere it can't be told: this way to the bus can't do it (ECAP).");
  bus.wayOf = {};
  bus.absent.insert({7, 18});
  EXPECT_EQ(Shown(panel.FindListeners()), "Nobody listens");
  bus.FailCall(1, 11);
  EXPECT_EQ(Shown(panel.FindListeners()),
            "not done: It can't be told who listens: this way to the bus can't do it (ECAP).");
}

TEST_F(BusPanelTest, RefusesWhatIsNoCommand) {
  EXPECT_EQ(Shown(panel.Send(7, "", LineEnd::None)), "not done: There is nothing to send");
  EXPECT_EQ(Shown(panel.Send(7, "\xE2\x84\xA6", LineEnd::Lf)),
            "not done: The bus can't carry every character of this command");
  EXPECT_EQ(Took(), Strings{});
}

TEST_F(BusPanelTest, ShowsTheUnitsAndSavesTheTrace) {
  const std::vector<BusUnit> units = {{18, "Generator"}, {13, "Meter"}};
  bus.absent.insert(13);
  bus.wayOf = [](int) { return "board 0"; };
  EXPECT_FALSE(panel.Send(13, "MA?", LineEnd::None));
  const auto rows = panel.Rows(units);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].Status, "not called yet");
  EXPECT_EQ(rows[1].Unit.Name + ", " + rows[1].Way + ": " + rows[1].Status,
            "Meter, board 0: nobody listens there (ENOL)");
  const std::string file = t.directory.File("trace.txt");
  const auto from = t.shell.gpib.Trace().End() - 1;
  EXPECT_TRUE(panel.SaveLines(from, file));
  EXPECT_EQ(t.directory.Read("trace.txt"), panel.Lines(from).front() + "\r\n");
  EXPECT_TRUE(FailsWith(panel.SaveLines(0, t.directory.File("none/trace.txt")), "Error # "));
}

}  // namespace
}  // namespace hylden
