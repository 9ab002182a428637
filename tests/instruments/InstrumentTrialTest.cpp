#include "instruments/InstrumentTrial.h"

#include "instruments/DefinitionEditor.h"
#include "support/SilentRun.h"
#include "support/TestStation.h"

namespace hylden {
namespace {

using Kind = InstrumentKind;

/// An editor on a station whose instruments answer, with its Test menu at hand.
struct Bench : TestStation {
  explicit Bench(Kind kind) : editor(DefinitionEditor::Of(kind, t.shell, instruments)), trial(editor->Trial()) {
    bus.fallback = [](int, const std::string&) { return "72.5"; };
  }

  /// Chooses an entry, with what is typed at its prompts.
  void Choose(const std::string& control, const Strings& typed = {}) {
    for (const std::string& text : typed) t.dialogs.AnswerInput(text);
    std::optional<EntryFailure> failure;
    EXPECT_TRUE(editor->Take(editor->Shown(), failure));
    for (const InstrumentTrial::Entry& entry : trial.Entries())
      if (entry.Control == "mnuTest" + control) trial.Run(entry);
  }
  Strings Offered() {
    Strings offered;
    for (const InstrumentTrial::Entry& entry : trial.Entries())
      if (trial.Offers(entry)) offered.push_back(entry.Control);
    return offered;
  }
  void Init() {
    Choose("Init", Typed());
    Took();
    t.dialogs.Clear();
  }
  Strings Typed() const { return editor->Kind() == Kind::SigGen ? Strings{"100", "-30"} : Strings{}; }

  std::unique_ptr<DefinitionEditor> editor;
  InstrumentTrial& trial;
};

struct EntryCase {
  Kind kind;
  const char* entry;
  Strings typed;
  Strings prompts;
  Strings bus;
  Strings told = {};
};

void PrintTo(const EntryCase& entry, std::ostream* out) {
  *out << entry.entry;
}

const EntryCase kEntries[] = {
    {Kind::SigGen, "SetFreqLev", {"50", "-40"}, {"Enter Frequency in MHZ", "Enter Level in DBM"}, {}},
    {Kind::SigGen,
     "EnableAm",
     {"1", "80"},
     {"Enter Modulation Frequency in KHZ", "Enter Modulation Depth in PCT"},
     {"> 18 AMF 1.0 KHZ", "> 18 AMD 80.0 PCT", "> 18 AM ON"}},
    {Kind::SigGen,
     "EnableFm",
     {"1", "5"},
     {"Enter Modulation Frequency in KHZ", "Enter Modulation Deviation in KHZ"},
     {"> 18 FMF 1.0 KHZ", "> 18 FMD 5.0 KHZ", "> 18 FM ON"}},
    {Kind::SigGen,
     "EnablePulse",
     {"1", "0.5"},
     {"Enter Pulse Frequency in KHZ", "Enter Pulse Width in MS"},
     {"> 18 PLF 1.0 KHZ", "> 18 PLW 0.5 MS", "> 18 PL ON"}},
    {Kind::SigGen, "ModOff", {}, {}, {}},
    {Kind::SigGen, "RfOn", {}, {}, {"> 18 FREQ 100.0 MHZ", "> 18 POW -30.0 DBM", "> 18 OUTP ON"}},
    {Kind::SigGen, "RfOff", {}, {}, {"> 18 OUTP OFF"}},
    {Kind::SigGen, "Local", {}, {}, {"> 18 POW -120.0 DBM", "> 18 FREQ 0.1 MHZ", "> 18 OUTP OFF", "LOCAL 18"}},
    {Kind::Meter, "SetLevel", {"80"}, {"Enter Level in dBuv"}, {"> 13 RL 82.0 DB"}},
    {Kind::Meter, "SetFreq", {"100"}, {"Enter Frequency in MZ"}, {"> 13 CF 100.0 MZ"}},
    {Kind::Meter, "Trigger", {}, {}, {"TMO 8", "< 13 !6", "TMO 13", "> 13 TS"}},
    {Kind::Meter,
     "Read",
     {},
     {},
     {"TMO 8", "< 13 !6", "TMO 13", "> 13 TS", "> 13 MA?", "< 13 72.5"},
     {"Result = 72.5 dBuv\r\nReturned String = \"72.5\""}},
    {Kind::Meter, "Shutdown", {}, {}, {"> 13 BYE", "LOCAL 13"}},
    {Kind::PwrMtr,
     "SetFreq",
     {"100"},
     {"Enter Frequency in MZ"},
     {"> 7 AP", "> 7 FR 100.0 MZ", "> 7 BP", "> 7 FR 100.0 MZ"}},
    {Kind::PwrMtr, "Trigger", {}, {}, {"> 7 AP", "TMO 8", "< 7 !6", "TMO 13", "> 7 AT"}},
    {Kind::PwrMtr,
     "Read",
     {},
     {},
     {"> 7 AP", "TMO 8", "< 7 !6", "TMO 13", "> 7 AT", "> 7 AR?", "< 7 72.5"},
     {"Result = 72.5 dBm\r\nReturned String = \"72.5\""}},
    {Kind::PwrMtr, "Shutdown", {}, {}, {"> 7 BYE", "LOCAL 7"}},
};

class TrialEntryTest : public testing::TestWithParam<EntryCase> {};

TEST_P(TrialEntryTest, AsksAndSendsWhatItSays) {
  const EntryCase& c = GetParam();
  Bench b(c.kind);
  b.Init();
  b.t.dialogs.inputs.clear();
  b.Choose(c.entry, c.typed);
  Strings prompts;
  for (const auto& input : b.t.dialogs.inputs) prompts.push_back(input.prompt);
  EXPECT_EQ(prompts, c.prompts);
  EXPECT_EQ(b.Took(), c.bus);
  EXPECT_EQ(b.t.dialogs.Texts(), c.told);
}

TEST_P(TrialEntryTest, WithoutAnAnswerToItsPromptsNothingIsSent) {
  const EntryCase& c = GetParam();
  const std::optional<std::string> answers[] = {std::nullopt, "", " ", "ten", "1e300"};
  for (std::size_t prompt = 0; prompt < c.prompts.size(); ++prompt)
    for (const auto& answer : answers) {
      Bench b(c.kind);
      b.Init();
      if (prompt > 0) b.t.dialogs.AnswerInput("1");
      b.t.dialogs.AnswerInput(answer);
      b.Choose(c.entry);
      EXPECT_EQ(b.Took(), Strings{});
      const std::string told = b.t.dialogs.LastText();
      EXPECT_EQ(told.substr(0, told.find('\r')), answer == "ten"     ? kNotANumberText
                                                 : answer == "1e300" ? kOutOfRangeText
                                                                     : "");
      EXPECT_TRUE(b.trial.IsUp());
    }
}

/// Each call of an entry fails in turn, also with RF on.
TEST_P(TrialEntryTest, AFailureOnTheBusIsToldOnceAndLeavesRfOffAndLocal) {
  const EntryCase& c = GetParam();
  for (int call = 1;; ++call) {
    SCOPED_TRACE(call);
    Bench b(c.kind);
    b.Init();
    if (c.kind == Kind::SigGen && c.entry != std::string("RfOn")) b.Choose("RfOn");
    b.Took();
    const int before = b.bus.Calls();
    b.bus.FailCall(call, gpib::kEnol);
    b.Choose(c.entry, c.typed);
    if (b.bus.Calls() - before < call) break;
    EXPECT_LE(b.t.dialogs.messages.size(), 1u);
    // A meter is drained blindly, so no failure of that is one of the entry.
    if (c.kind == Kind::SigGen) {
      EXPECT_EQ(b.t.dialogs.messages.size(), 1u);
    }
    EXPECT_FALSE(b.sigGen.RfIsOn() && !b.t.dialogs.messages.empty()) << "off before it is told";
    b.editor->Leave();
    EXPECT_FALSE(b.sigGen.RfIsOn());
    const Strings sent = b.Took();
    const std::string local = "LOCAL " + std::string(c.kind == Kind::SigGen  ? "18"
                                                     : c.kind == Kind::Meter ? "13"
                                                                             : "7");
    EXPECT_EQ(std::count(sent.begin(), sent.end(), local), 1) << testing::PrintToString(sent);
    EXPECT_FALSE(b.t.shell.InstrumentsClaimed());
  }
}

INSTANTIATE_TEST_SUITE_P(Entries, TrialEntryTest, testing::ValuesIn(kEntries), [](const auto& row) {
  const char* const kind = row.param.kind == Kind::SigGen ? "SigGen" : row.param.kind == Kind::Meter ? "Meter" : "PM";
  return std::string(kind) + row.param.entry;
});

struct InitCase {
  Kind kind;
  Strings bus;
  std::size_t entries;
};

TEST(InstrumentTrial, InitOpensTheInstrumentAndOffersTheOtherEntriesUntilItIsOffline) {
  const InitCase cases[] = {
      {Kind::SigGen, {"IFC", "TMO 13", "FIND 18", "REMOTE 18", "> 18 *RST", "> 18 MOD OFF", "> 18 OUTP OFF"}, 9},
      {Kind::Meter, {"IFC", "TMO 13", "FIND 13", "REMOTE 13", "> 13 IP", "> 13 RL 120.0 DB"}, 7},
      {Kind::PwrMtr, {"IFC", "TMO 13", "FIND 7", "REMOTE 7", "> 7 PR"}, 6}};
  for (const InitCase& c : cases) {
    Bench b(c.kind);
    EXPECT_EQ(b.Offered(), (Strings{"mnuTestInit"}));
    b.Choose("Init", b.Typed());
    EXPECT_EQ(b.Took(), c.bus);
    EXPECT_EQ(b.Offered().size(), c.entries);
    b.Choose(c.kind == Kind::SigGen ? "Local" : "Shutdown");
    EXPECT_EQ(b.Offered(), (Strings{"mnuTestInit"}));
    EXPECT_FALSE(b.t.shell.InstrumentsClaimed());
  }
}

TEST(InstrumentTrial, AnInitThatFailsAnywhereIsToldOnceAndTakesNothingUp) {
  for (const Kind kind : {Kind::SigGen, Kind::Meter, Kind::PwrMtr})
    for (int call = 1;; ++call) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(kind) << ", call " << call);
      Bench b(kind);
      b.bus.FailCall(call, gpib::kEnol);
      b.Choose("Init", b.Typed());
      if (b.trial.IsUp()) break;
      EXPECT_EQ(b.t.dialogs.messages.size(), 1u);
      EXPECT_FALSE(b.sigGen.RfIsOn());
      EXPECT_EQ(b.Offered(), (Strings{"mnuTestInit"}));
      EXPECT_FALSE(b.t.shell.InstrumentsClaimed());
    }
}

TEST(InstrumentTrial, AnInstrumentThatDiesWhileItComesUpIsNotLeftLockedOut) {
  for (const auto& [kind, address] : {std::pair{Kind::SigGen, 18}, {Kind::Meter, 13}, {Kind::PwrMtr, 7}}) {
    Bench b(kind);
    b.bus.Kill(address);
    b.Choose("Init", b.Typed());
    const Strings sent = b.Took();
    EXPECT_EQ(std::find(sent.rbegin(), sent.rend(), "LOCAL " + std::to_string(address)) - sent.rbegin(), 1)
        << "it comes last, before the time limit is set anew: " << testing::PrintToString(sent);
    EXPECT_EQ(b.t.dialogs.messages.size(), 1U);
  }
}

TEST(InstrumentTrial, ADeadGeneratorIsToldOnceWithWhatItMeans) {
  Bench b(Kind::SigGen);
  b.Init();
  b.Choose("RfOn");
  b.bus.Kill(18);
  b.Choose("SetFreqLev", {"50", "-40"});
  EXPECT_TRUE(b.ToldOnce("Error in writing command to Signal Generator. \r\n"));
  EXPECT_TRUE(b.t.dialogs.LastText().ends_with("\r\n" + std::string(kRfMayBeOn)));
  b.t.dialogs.Clear();
  b.editor->Leave();
  EXPECT_EQ(b.t.dialogs.Texts(), Strings{});
}

TEST(InstrumentTrial, ALevelAboveTheMaximumIsRefusedWithRfOff) {
  Bench b(Kind::SigGen);
  b.Init();
  b.Choose("RfOn");
  b.Took();
  b.Choose("SetFreqLev", {"50", "13.1"});
  EXPECT_TRUE(b.ToldOnce("Level requested outside of range of instrument"));
  EXPECT_EQ(b.Took(), (Strings{"> 18 OUTP OFF"}));
  EXPECT_TRUE(b.trial.IsUp());
}

struct WayOut {
  const char* name;
  void (*take)(Bench&);
};

TEST(InstrumentTrial, EveryWayOutLeavesTheGeneratorWithRfOffAndLocal) {
  const WayOut ways[] = {{"closing", [](Bench& b) { b.editor->Leave(); }},
                         {"an RF off that fails for Escape",
                          [](Bench& b) {
                            b.bus.FailCall(1, gpib::kEnol);
                            b.bus.FailCall(2, gpib::kEnol);
                            b.trial.Halt();
                          }},
                         {"destruction", [](Bench& b) { b.editor.reset(); }},
                         {"new", [](Bench& b) { b.editor->New(); }},
                         {"load", [](Bench& b) { b.editor->Load(b.t.directory.File("missing.sg")); }},
                         {"another address",
                          [](Bench& b) {
                            FormEntries entries = b.editor->Shown();
                            entries["txtAddress"] = "5";
                            std::optional<EntryFailure> failure;
                            EXPECT_TRUE(b.editor->Take(entries, failure));
                          }},
                         {"another instrument",
                          [](Bench& b) {
                            const auto meter = DefinitionEditor::Of(Kind::Meter, b.t.shell, b.instruments);
                            meter->Trial().Run(meter->Trial().Entries().front());
                            EXPECT_TRUE(meter->Trial().IsUp());
                          }},
                         {"an exception", [](Bench& b) {
                            b.bus.ThrowAtCall(1);
                            EXPECT_ANY_THROW(b.Choose("EnableAm", {"1", "80"}));
                          }}};
  for (const WayOut& way : ways) {
    SCOPED_TRACE(way.name);
    Bench b(Kind::SigGen);
    b.Init();
    b.Choose("RfOn");
    b.Took();
    way.take(b);
    EXPECT_FALSE(b.sigGen.RfIsOn());
    const Strings sent = b.Took();
    const auto off = std::find(sent.begin(), sent.end(), "> 18 OUTP OFF");
    EXPECT_NE(off, sent.end());
    EXPECT_NE(std::find(off, sent.end(), "LOCAL 18"), sent.end());
  }
}

TEST(InstrumentTrial, LeavesTheGeneratorLocalWhicheverCallFailsOnTheWay) {
  for (int call = 1;; ++call) {
    SCOPED_TRACE(call);
    Bench b(Kind::SigGen);
    b.Init();
    b.Choose("RfOn");
    b.Took();
    const int before = b.bus.Calls();
    b.bus.FailCall(call, gpib::kEnol);
    b.editor->Leave();
    if (b.bus.Calls() - before < call) break;
    EXPECT_FALSE(b.sigGen.RfIsOn());
    EXPECT_EQ(b.Took().back(), "LOCAL 18");
    EXPECT_EQ(b.t.dialogs.Texts(), Strings{}) << "the second attempt got through";
  }
}

TEST(InstrumentTrial, AChangedDefinitionSwitchesRfOffByTheOldCommandAndIsSentWhole) {
  Bench b(Kind::SigGen);
  b.Init();
  b.Choose("RfOn");
  b.Took();
  FormEntries entries = b.editor->Shown();
  entries["txtRfOff"] = "RF0";
  entries["txtFreqSetPre"] = "FRQ";
  std::optional<EntryFailure> failure;
  EXPECT_TRUE(b.editor->Take(entries, failure));
  EXPECT_EQ(b.Took(), (Strings{"> 18 OUTP OFF"}));
  b.Choose("RfOn");
  EXPECT_EQ(b.Took(), (Strings{"> 18 FRQ 100.0 MHZ", "> 18 POW -30.0 DBM", "> 18 OUTP ON"}));
  b.Choose("RfOff");
  EXPECT_EQ(b.Took(), (Strings{"> 18 RF0"}));
}

TEST(InstrumentTrial, ASettingThatFailedIsSentAgain) {
  Bench b(Kind::Meter);
  b.Init();
  for (const auto& [entry, line] : {std::pair{"SetLevel", "> 13 RL 82.0 DB"}, {"SetFreq", "> 13 CF 80.0 MZ"}}) {
    b.bus.FailCall(1, gpib::kEnol);
    b.Choose(entry, {"80"});
    b.Took();
    b.Choose(entry, {"80"});
    EXPECT_EQ(b.Took(), (Strings{line}));
  }
}

TEST(InstrumentTrial, ReadsAPendingTriggerAfterItsSettlingTimeInSpiteOfAnEarlierHalt) {
  Bench b(Kind::Meter);
  b.Init();
  b.Choose("Trigger");
  b.t.shell.delay.RequestHalt();
  b.Took();
  const std::int64_t before = b.t.clock.TickMs();
  b.Choose("Read");
  EXPECT_EQ(b.t.clock.TickMs() - before, 500);
  EXPECT_EQ(b.Took(), (Strings{"> 13 MA?", "< 13 72.5"}));
  EXPECT_TRUE(b.ToldOnce("Result = 72.5 dBuv"));
}

TEST(InstrumentTrial, KeepsTheAnswerThatWasReadLast) {
  Bench b(Kind::Meter);
  b.Init();
  b.bus.Answer(13, "over");
  b.Choose("Read");
  EXPECT_TRUE(b.ToldOnce("The meter's answer holds no number:"));
  b.bus.Silence(13);
  b.Choose("Read");
  EXPECT_EQ(b.trial.LastAnswer(), "over");
}

TEST(InstrumentTrial, RunsAndTrialsKeepEachOtherOut) {
  Bench b(Kind::SigGen);
  SilentRun run;
  b.Init();
  EXPECT_FALSE(b.t.shell.ClaimInstruments(run));
  EXPECT_TRUE(b.ToldOnce("The editor of an instrument is using the instruments"));
  b.editor->Leave();
  ASSERT_TRUE(b.t.shell.ClaimInstruments(run));
  b.Took();
  b.t.dialogs.Clear();
  b.Choose("Init", {"1", "-30"});
  EXPECT_TRUE(b.ToldOnce("Another run is using the instruments"));
  FormEntries entries = b.editor->Shown();
  entries["txtRfOff"] = "nothing";
  std::optional<EntryFailure> failure;
  EXPECT_FALSE(b.editor->Take(entries, failure));
  EXPECT_FALSE(b.editor->New() || b.editor->Load("other.sg"));
  EXPECT_EQ(b.sigGen.Definition().RfOff, "OUTP OFF") << "the run goes on with its definition";
  EXPECT_EQ(b.Took(), Strings{});
}

TEST(InstrumentTrial, NoEntryBeginsWhileAnotherWaits) {
  Bench b(Kind::Meter);
  b.Init();
  bool tried = false;
  b.t.events.onYield = [&] {
    tried = true;
    EXPECT_EQ(b.Offered(), Strings{});
    b.Choose("Shutdown");
    b.trial.End();
  };
  b.Choose("Read");
  b.t.events.onYield = nullptr;
  EXPECT_TRUE(tried);
  EXPECT_TRUE(b.ToldOnce("Result = "));
}

TEST(DefinitionEditor, WhatWasOnlyTriedIsNoMoreTheStations) {
  Bench b(Kind::SigGen);
  const std::string path = b.t.directory.File("gen.sg");
  FormEntries entries = b.editor->Shown();
  std::optional<EntryFailure> failure;
  entries["txtAddress"] = "5";
  ASSERT_TRUE(b.editor->Take(entries, failure));
  EXPECT_EQ(b.sigGen.Address(), 5);
  b.editor->Leave();
  EXPECT_EQ(b.sigGen.Address(), 18);

  ASSERT_TRUE(b.editor->Take(entries, failure) && b.editor->Save(path));
  EXPECT_EQ(b.editor->File(), path);
  b.editor->New();
  ASSERT_TRUE(b.editor->Take(b.editor->Shown(), failure));
  b.editor->Leave();
  EXPECT_EQ(b.sigGen.Address(), 5) << "what was saved is";
  EXPECT_EQ(b.sigGen.FileName(), path);
}

TEST(DefinitionEditor, WithoutAnInstrumentThereIsNoneAfterwardsEither) {
  TestStation s;
  s.meter.Forget();
  const auto editor = DefinitionEditor::Of(Kind::Meter, s.t.shell, s.instruments);
  std::optional<EntryFailure> failure;
  EXPECT_TRUE(editor->Take(editor->Shown(), failure));
  EXPECT_TRUE(s.meter.HasDefinition());
  editor->Leave();
  EXPECT_FALSE(s.meter.HasDefinition());
}

}  // namespace
}  // namespace hylden
