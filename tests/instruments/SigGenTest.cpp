#include "instruments/SigGen.h"

#include <functional>
#include <limits>

#include "support/TestStation.h"

namespace hylden {
namespace {

struct SigGenTest : testing::Test, TestStation {};

TEST_F(SigGenTest, EndsEveryCommandWithTheDefinedEnd) {
  Redefine(sigGen, [](auto& d) { d.EndOfString = 2; });
  EXPECT_EQ(RfOnAt(100, -20), (Strings{"> 18 FREQ 100.0 MHZ\\r\\n", "> 18 POW -20.0 DBM\\r\\n", "> 18 OUTP ON\\r\\n"}));
  Redefine(sigGen, [](auto& d) { d.EndOfString = 5; });  // unknown: as before
  EXPECT_TRUE(sigGen.RfOff());
  Redefine(sigGen, [](auto& d) { d.EndOfString = 1; });
  EXPECT_EQ(Out(sigGen.RfOff()), (Strings{"> 18 OUTP OFF\\r\\n", "> 18 OUTP OFF\\r"}));
}

TEST_F(SigGenTest, HoldsRequestsWhileRfIsOffAndSendsOnlyChangesWhileOn) {
  EXPECT_TRUE(Out(sigGen.SetFreqLevel(150, -20)).empty());
  EXPECT_EQ(Out(sigGen.RfOn()), (Strings{"> 18 FREQ 150.0 MHZ", "> 18 POW -20.0 DBM", "> 18 OUTP ON"}));
  EXPECT_TRUE(sigGen.RfIsOn());
  EXPECT_TRUE(Out(sigGen.SetFreqLevel(150, -20)).empty());
  EXPECT_TRUE(sigGen.SetFreqLevel(150, -10.25F));
  EXPECT_EQ(Out(sigGen.SetFreqLevel(151.123456F, -10.25F)),
            (Strings{"> 18 POW -10.3 DBM", "> 18 FREQ 151.123459 MHZ"}));
}

TEST_F(SigGenTest, NeverPutsTheHigherLevelOnTheWrongFrequency) {
  RfOnAt(100, -20);
  EXPECT_EQ(Out(sigGen.SetFreqLevel(101, -10)), (Strings{"> 18 FREQ 101.0 MHZ", "> 18 POW -10.0 DBM"}));
  EXPECT_EQ(Out(sigGen.SetFreqLevel(102, -30)), (Strings{"> 18 POW -30.0 DBM", "> 18 FREQ 102.0 MHZ"}));
  EXPECT_TRUE(sigGen.RfOff());
  Out(sigGen.SetFreqLevel(103, -40));
  EXPECT_EQ(Out(sigGen.RfOn()), (Strings{"> 18 POW -40.0 DBM", "> 18 FREQ 103.0 MHZ", "> 18 OUTP ON"}));
}

TEST_F(SigGenTest, RefusesWhatIsOutsideTheLimitsWithRfOff) {
  const char* level = "Level requested outside of range of instrument";
  const char* freq = "Frequency requested outside of range of instrument";
  const float noLevel = std::numeric_limits<float>::quiet_NaN();
  const double noFreq = std::numeric_limits<double>::quiet_NaN();
  const std::tuple<double, float, const char*> cases[] = {
      {100, 13, nullptr},    {100, -120, nullptr},  {1000, 0, nullptr}, {0.1, 0, nullptr},
      {100, 13.05F, level},  {100, -120.1F, level}, {1000.1, 0, freq},  {0.09, 0, freq},
      {100, noLevel, level}, {noFreq, 0, freq},     {1e9, 99, level}};
  for (const auto& [freqMHz, levelDbm, message] : cases) {
    SCOPED_TRACE(testing::Message() << freqMHz << " MHz, " << levelDbm << " dBm");
    TestStation s;
    s.RfOnAt(50, -50);
    const Done set = s.sigGen.SetFreqLevel(freqMHz, levelDbm);
    EXPECT_EQ(set.has_value(), message == nullptr);
    EXPECT_EQ(s.sigGen.RfIsOn(), message == nullptr);
    if (!message) continue;
    EXPECT_EQ(s.Took(), (Strings{"> 18 OUTP OFF"}));
    EXPECT_EQ(Told(set), (Strings{message}));
    // The request before still stands.
    EXPECT_EQ(s.Out(s.sigGen.RfOn()), (Strings{"> 18 OUTP ON"}));
  }
}

TEST_F(SigGenTest, SendsBothAgainAfterAFailedSend) {
  for (int failing = 1; failing <= 2; ++failing) {
    SCOPED_TRACE(failing);
    TestStation s;
    s.RfOnAt(50, -50);
    s.bus.FailCall(failing, gpib::kEnol);
    EXPECT_TRUE(FailsWith(s.sigGen.SetFreqLevel(60, -40), "Error in writing command to Signal Generator. \r\n"));
    EXPECT_EQ(s.Took().size(), static_cast<std::size_t>(failing));
    // Neither the new pair nor the one before is known to stand.
    const double next = failing == 1 ? 60 : 50;
    EXPECT_EQ(s.Out(s.sigGen.SetFreqLevel(next, static_cast<float>(next - 100))),
              failing == 1 ? (Strings{"> 18 FREQ 60.0 MHZ", "> 18 POW -40.0 DBM"})
                           : (Strings{"> 18 FREQ 50.0 MHZ", "> 18 POW -50.0 DBM"}));
  }
}

TEST_F(SigGenTest, StaysSilentWithoutFrequencyOrLevelCommands) {
  Redefine(sigGen, [](auto& d) { d.LevSetPrefix = d.LevSetSuffix = ""; });
  EXPECT_TRUE(FailsSilently(sigGen.SetFreqLevel(100, 99)));
  Redefine(sigGen, [](auto& d) { d.LevSetSuffix = "DBM", d.FreqSetPrefix = d.FreqSetSuffix = ""; });
  EXPECT_TRUE(FailsSilently(sigGen.SetFreqLevel(100, 0)));
  EXPECT_TRUE(Took().empty());
}

TEST_F(SigGenTest, EmulatesRfOffByTheMinimumLevel) {
  Redefine(sigGen, [](auto& d) { d.RfOff = ""; });
  EXPECT_TRUE(sigGen.RfOff());  // nothing was ever sent
  EXPECT_EQ(Out(sigGen.RfOn()), (Strings{"> 18 FREQ 0.1 MHZ", "> 18 POW -120.0 DBM", "> 18 OUTP ON"}));
  Out(sigGen.SetFreqLevel(200, -10));
  EXPECT_TRUE(sigGen.RfOff());
  EXPECT_FALSE(sigGen.RfIsOn());
  EXPECT_TRUE(Took().empty());
  EXPECT_EQ(Out(sigGen.RfOn()), (Strings{"> 18 POW -120.0 DBM", "> 18 OUTP ON"}));
  EXPECT_EQ(Told(sigGen.SetFreqLevel(2000, 0)).size(), 1U);  // not a loop
}

TEST_F(SigGenTest, AGeneratorWithoutRfOffIsAtItsMinimumWheneverRfHasToBeOff) {
  Redefine(sigGen, [](auto& d) { d.RfOff = ""; });
  EXPECT_TRUE(sigGen.InitSigGen(100, -10));
  EXPECT_EQ(Took(),
            (Strings{"FIND 18", "REMOTE 18", "> 18 *RST", "> 18 MOD OFF", "> 18 POW -120.0 DBM", "> 18 FREQ 0.1 MHZ"}));
  for (const auto& [freqMHz, levelDbm] : {std::pair{2000.0, 0.0F}, std::pair{100.0, 99.0F}}) {
    RfOnAt(200, -10);
    EXPECT_FALSE(sigGen.SetFreqLevel(freqMHz, levelDbm));
    EXPECT_EQ(Took(), (Strings{"> 18 POW -120.0 DBM"}));
  }
  RfOnAt(200, -10);
  EXPECT_TRUE(sigGen.RfOff());  // as the operator's command it sends nothing, and the level stays
  Took();
  EXPECT_EQ(Out(sigGen.ShutdownSigGen()), (Strings{"> 18 POW -120.0 DBM", "> 18 FREQ 0.1 MHZ", "LOCAL 18"}));
  EXPECT_TRUE(Out(sigGen.SilenceRf()).empty());
}

TEST_F(SigGenTest, AGeneratorThatCanNotBeLoweredIsReportedAndTriedAgain) {
  Redefine(sigGen, [](auto& d) { d.RfOff = ""; });
  RfOnAt(200, -10);
  bus.FailLine("> 18 POW -120.0", gpib::kEnol);
  EXPECT_TRUE(FailsWith(sigGen.SilenceRf(), "Error in writing command to Signal Generator. \r\n"));
  EXPECT_EQ(sigGen.RfState(), Rf::Unknown);
  Took();
  EXPECT_TRUE(sigGen.SilenceRf());
  EXPECT_EQ(Took().front(), "> 18 POW -120.0 DBM");
  sigGen.PutDefinition({});
  EXPECT_TRUE(sigGen.SilenceRf());  // without commands there is nothing to lower
  EXPECT_TRUE(Took().empty());
}

TEST_F(SigGenTest, RfCountsAsOnUntilACommandToEndItGotThrough) {
  EXPECT_TRUE(sigGen.SetFreqLevel(200, -10));
  bus.FailLine("> 18 OUTP ON", gpib::kEnol);
  EXPECT_FALSE(sigGen.RfOn());
  EXPECT_EQ(sigGen.RfState(), Rf::Unknown);
  EXPECT_TRUE(sigGen.SilenceRf());
  EXPECT_EQ(sigGen.RfState(), Rf::Off);
  EXPECT_TRUE(sigGen.RfOn());
  EXPECT_EQ(sigGen.RfState(), Rf::On);
  for (int attempt = 0; attempt < 2; ++attempt) {
    bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
    EXPECT_FALSE(sigGen.SilenceRf());
    EXPECT_EQ(sigGen.RfState(), Rf::Unknown);
    EXPECT_TRUE(sigGen.RfIsOn());
  }
  EXPECT_TRUE(sigGen.SilenceRf());
  bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
  EXPECT_FALSE(sigGen.SilenceRf());
  EXPECT_EQ(sigGen.RfState(), Rf::Off) << "what was off does not go on by itself";
}

TEST_F(SigGenTest, BehindACommandThatHungRfOffGoesOutTwiceAndOnceBeforeWhatEndsThatCommand) {
  const std::tuple<int, const char*, Strings> cases[] = {
      {0, "OUTP OFF", {"OUTP OFF", "\\n", "OUTP OFF", "OUTP OFF"}},
      {1, "OUTP OFF", {"OUTP OFF\\r", "\\r", "OUTP OFF\\r", "OUTP OFF\\r"}},
      {2, "OUTP OFF", {"OUTP OFF\\r\\n", "\\r\\n", "OUTP OFF\\r\\n", "OUTP OFF\\r\\n"}},
      {0,
       "",
       {"POW -120.0 DBM", "FREQ 0.1 MHZ", "\\n", "POW -120.0 DBM", "FREQ 0.1 MHZ", "POW -120.0 DBM", "FREQ 0.1 MHZ"}}};
  for (const auto& [endOfString, rfOff, sent] : cases) {
    SCOPED_TRACE(testing::PrintToString(sent));
    TestStation s;
    Redefine(s.sigGen, [&, code = endOfString, off = rfOff](auto& d) { d.EndOfString = code, d.RfOff = off; });
    s.RfOnAt(100, -20);
    s.bus.FailLine("> 18 POW -21.0", gpib::kEabo);
    EXPECT_FALSE(s.sigGen.SetFreqLevel(100, -21));
    s.bus.transcript.Clear();
    EXPECT_TRUE(s.sigGen.SilenceRf());
    EXPECT_EQ(s.bus.transcript.SentTo(18), sent);
    EXPECT_EQ(s.sigGen.RfState(), Rf::Off);
    s.bus.transcript.Clear();
    EXPECT_TRUE(s.sigGen.SilenceRf());
    EXPECT_LE(s.bus.transcript.SentTo(18).size(), 1U) << "it got through";
  }
}

TEST_F(SigGenTest, IsLeftAtItsMinimumWhateverItsStateAtShutdown) {
  RfOnAt(200, -10);
  Out(sigGen.RfOff());
  EXPECT_EQ(Out(sigGen.ShutdownSigGen()),
            (Strings{"> 18 POW -120.0 DBM", "> 18 FREQ 0.1 MHZ", "> 18 OUTP OFF", "LOCAL 18"}));
  EXPECT_TRUE(sigGen.InitSigGen(0, -60));  // the level is not known any more
  Took();
  EXPECT_EQ(Out(sigGen.ShutdownSigGen()),
            (Strings{"> 18 POW -120.0 DBM", "> 18 FREQ 0.1 MHZ", "> 18 OUTP OFF", "LOCAL 18"}));
}

TEST_F(SigGenTest, StartsAtTheMinimumWithModulationAndRfOff) {
  EXPECT_TRUE(sigGen.InitSigGen(0, -60));
  EXPECT_FALSE(sigGen.RfIsOn());
  EXPECT_EQ(Took(), (Strings{"FIND 18", "REMOTE 18", "> 18 *RST", "> 18 MOD OFF", "> 18 OUTP OFF"}));
  EXPECT_EQ(Out(sigGen.RfOn()), (Strings{"> 18 FREQ 0.1 MHZ", "> 18 POW -120.0 DBM", "> 18 OUTP ON"}));
  // already at the minimum
  EXPECT_EQ(Out(sigGen.ShutdownSigGen()), (Strings{"> 18 OUTP OFF", "LOCAL 18"}));
}

TEST_F(SigGenTest, SendsATerminatorForAnEmptyCommandButNothingWithoutOne) {
  Redefine(sigGen, [](auto& d) { d.InitString = d.RfOn = ""; });
  EXPECT_TRUE(sigGen.InitSigGen(0, 0));
  EXPECT_EQ(Took().at(2), "> 18 MOD OFF");
  Redefine(sigGen, [](auto& d) { d.EndOfString = 1; });
  EXPECT_TRUE(sigGen.InitSigGen(0, 0));
  EXPECT_EQ(Took().at(2), "> 18 \\r");
  EXPECT_EQ(RfOnAt(100, 0).back(), "> 18 \\r");
}

TEST_F(SigGenTest, SwitchesRfOffEvenIfModulationCanNotBe) {
  bus.FailLine("> 18 MOD OFF", gpib::kEnol);
  EXPECT_TRUE(FailsWith(sigGen.InitSigGen(0, -60), "Error turning modulation off. \r\n"));
  EXPECT_EQ(Took().back(), "> 18 OUTP OFF");
}

TEST_F(SigGenTest, SwitchesAmByItsDepthWithoutLosingTheDepth) {
  EXPECT_TRUE(sigGen.SetAM(1, 80, true));
  EXPECT_EQ(Out(sigGen.AmOn()), (Strings{"> 18 AMF 1.0 KHZ", "> 18 AMD 80.0 PCT", "> 18 AM ON"}));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Out(sigGen.ModOff()), (Strings{"> 18 AMF 1.0 KHZ", "> 18 AMD 0.0 PCT"}));
    EXPECT_EQ(Out(sigGen.AmOn()), (Strings{"> 18 AMF 1.0 KHZ", "> 18 AMD 80.0 PCT"}));
  }
}

TEST_F(SigGenTest, SwitchesOtherModulationsByTheirCommands) {
  EXPECT_TRUE(sigGen.SetAM(0.4F, 30, false));
  EXPECT_TRUE(sigGen.AmOn());
  EXPECT_TRUE(sigGen.ModOff());
  // already off
  EXPECT_EQ(Out(sigGen.ModOff()), (Strings{"> 18 AMF 0.4 KHZ", "> 18 AMD 30.0 PCT", "> 18 AM ON", "> 18 MOD OFF"}));
  EXPECT_TRUE(sigGen.SetFM(1, 2.5F));
  EXPECT_EQ(Out(sigGen.FmOn()), (Strings{"> 18 FMF 1.0 KHZ", "> 18 FMD 2.5 KHZ", "> 18 FM ON"}));
  EXPECT_TRUE(sigGen.SetPulse(0.2F, 0.0005F));
  EXPECT_EQ(Out(sigGen.PulseOn()), (Strings{"> 18 PLF 0.2 KHZ", "> 18 PLW 0.001 MS", "> 18 PL ON"}));
}

TEST_F(SigGenTest, AModulationCommandThatDidNotGetThroughIsSentAgain) {
  EXPECT_TRUE(sigGen.SetAM(1, 80, false));
  bus.FailLine("> 18 AM ON", gpib::kEnol);
  EXPECT_FALSE(sigGen.AmOn());
  Took();
  EXPECT_TRUE(sigGen.AmOn());
  EXPECT_EQ(Took().front(), "> 18 AM ON");
  bus.FailLine("> 18 MOD OFF", gpib::kEnol);
  EXPECT_FALSE(sigGen.ModOff());
  EXPECT_EQ(Out(sigGen.ModOff()), (Strings{"> 18 MOD OFF !2", "> 18 MOD OFF"}));
  bus.FailLine("> 18 FM ON", gpib::kEnol);  // or it got through, and its answer was lost
  EXPECT_FALSE(sigGen.FmOn());
  EXPECT_TRUE(sigGen.ModOff());
  EXPECT_EQ(Took().back(), "> 18 MOD OFF");
}

TEST_F(SigGenTest, SkipsEmptyAmCommandsButSendsEmptyFmOnes) {
  Redefine(sigGen, [](auto& d) { d.AmFreqPrefix = d.AmFreqSuffix = d.FmFreqPrefix = d.FmFreqSuffix = ""; });
  EXPECT_TRUE(sigGen.SetAM(1, 80, false));
  EXPECT_EQ(Out(sigGen.SetFM(1, 2)), (Strings{"> 18 AMD 80.0 PCT", "> 18  1.0 ", "> 18 FMD 2.0 KHZ"}));
}

TEST_F(SigGenTest, RefusesModulationsThatTheGeneratorLacks) {
  Redefine(sigGen, [](auto& d) { d.AmCapable = d.FmCapable = d.PulseCapable = 0; });
  for (const Done& am : {sigGen.SetAM(1, 80, false), sigGen.AmOn()})
    EXPECT_EQ(Told(am), Strings{"Signal Generator not capable of AM Modulation"});
  for (const Done& fm : {sigGen.SetFM(1, 1), sigGen.FmOn()})
    EXPECT_EQ(Told(fm), Strings{"Signal Generator not capable of FM Modulation"});
  for (const Done& pulse : {sigGen.SetPulse(1, 1), sigGen.PulseOn()})
    EXPECT_EQ(Told(pulse), Strings{"Signal Generator not capable of Pulse Modulation"});
  EXPECT_TRUE(Took().empty());
}

TEST_F(SigGenTest, EachFailedSendStopsTheOperationWithOneReport) {
  const auto byDepth = [](SigGen& g) { return g.SetAM(1, 9, true).and_then([&] { return g.AmOn(); }); };
  const std::tuple<std::function<Done(SigGen&)>, Strings, std::string> cases[] = {
      {&SigGen::RfOn, {"> 18 OUTP ON"}, "Error setting SigGen RF on. \r\n"},
      {&SigGen::RfOff, {"> 18 OUTP OFF"}, "Error setting SigGen RF off. \r\n"},
      {[](auto& g) { return g.SetAM(1, 1, false); }, {"> 18 AMF", "> 18 AMD"}, "Error setting AM modulation\r\n"},
      {[](auto& g) { return g.SetFM(1, 1); }, {"> 18 FMF", "> 18 FMD"}, "Error setting FM modulation\r\n"},
      {[](auto& g) { return g.SetPulse(1, 1); }, {"> 18 PLF", "> 18 PLW"}, "Error setting Pulse modulation\r\n"},
      {&SigGen::AmOn, {"> 18 AM ON"}, "Error setting AM Modulation on. \r\n"},
      {&SigGen::FmOn, {"> 18 FM ON"}, "Error setting FM Modulation on. \r\n"},
      {&SigGen::PulseOn, {"> 18 PL ON"}, "Error setting Pulse Modulation on.\r\n"},
      {[](auto& g) { return g.FmOn().and_then([&] { return g.ModOff(); }); },
       {"> 18 MOD OFF"},
       "Error turning modulation off. \r\n"},
      {[&](auto& g) { return byDepth(g).and_then([&] { return g.ModOff(); }); },
       {"> 18 AMD 0.0"},
       "Error setting AM modulation\r\n"},
      {[&](auto& g) { return byDepth(g).and_then([&] { return g.AmOn(); }); },
       {"> 18 AMF", "> 18 AMD"},
       "Error setting AM modulation\r\n"},
      {&SigGen::ShutdownSigGen, {"LOCAL 18"}, "Error closing SigGen\r\n"},
  };
  for (const auto& [operation, calls, report] : cases) {
    for (const std::string& call : calls) {
      SCOPED_TRACE(report + " at " + call);
      TestStation s;
      s.RfOnAt(100, 0);
      s.bus.FailLine(call, gpib::kEnol);
      EXPECT_TRUE(FailsWith(operation(s.sigGen), report));
      EXPECT_TRUE(s.Took().back().starts_with(call));
    }
  }
}

TEST_F(SigGenTest, AShutdownThatCanNotLowerTheLevelSwitchesRfOffAllTheSame) {
  RfOnAt(100, 0);
  bus.FailLine("> 18 POW", gpib::kEnol);
  EXPECT_TRUE(FailsWith(sigGen.ShutdownSigGen(), "Error in writing command to Signal Generator. \r\n"));
  EXPECT_TRUE(Took().back().starts_with("> 18 OUTP OFF"));
  EXPECT_FALSE(sigGen.RfIsOn());
}

TEST_F(SigGenTest, CountsAsOnWhenSwitchingOffIsCutShort) {
  RfOnAt(100, 0);
  bus.transcript.onLine = [](const std::string&) { throw std::runtime_error("unplugged"); };
  EXPECT_THROW(sigGen.RfOff(), std::runtime_error);
  EXPECT_TRUE(sigGen.RfIsOn());
}

}  // namespace
}  // namespace hylden
