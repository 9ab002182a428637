#include "instruments/IfiAmp.h"

#include <gmock/gmock.h>

#include "support/TestStation.h"

namespace hylden {
namespace {

const Strings kReset = {"> 18 OUTP OFF", "> 10 8\\r\\n", "> 9 FA\\r\\n", "> 9 L3\\r\\n",
                        "> 9 M1\\r\\n",  "> 9 ON\\r\\n", "> 9 B1\\r\\n", "> 9 ZA\\r\\n"};
const Strings kLow = {"> 18 OUTP OFF", "> 10 8\\r\\n", "> 9 FA\\r\\n", "> 9 L3\\r\\n", "> 9 M1\\r\\n",
                      "> 9 ON\\r\\n",  "> 9 B1\\r\\n", "> 10 9\\r\\n", "> 9 ZA\\r\\n"};
const Strings kHigh = {"> 18 OUTP OFF", "> 9 FA\\r\\n", "> 10 8\\r\\n", "> 9 L3\\r\\n",
                       "> 9 M1\\r\\n",  "> 9 ON\\r\\n", "> 9 B2\\r\\n", "> 9 ZA\\r\\n"};

struct IfiAmpTest : testing::Test, TestStation {
  void Start(double frequencyMHz) {
    EXPECT_TRUE(ifiAmp.IfiInit(AmpControl::Ifi, 215));
    EXPECT_TRUE(frequencyMHz == 0 || ifiAmp.IfiSetBand(frequencyMHz));
    Took();
  }
  void ExpectPowers(float first, float second) {
    const auto powers = ifiAmp.IfiReadPower();
    ASSERT_TRUE(powers) << testing::PrintToString(Told(powers));
    EXPECT_EQ(powers->First, first);
    EXPECT_EQ(powers->Second, second);
  }
};

TEST_F(IfiAmpTest, AGenericAmplifierIsLeftAlone) {
  EXPECT_TRUE(ifiAmp.IfiInit(AmpControl::Generic, 230));
  EXPECT_TRUE(ifiAmp.IfiReset());
  EXPECT_TRUE(ifiAmp.IfiSetBand(100));
  ExpectPowers(-1, -1);
  EXPECT_TRUE(Took().empty());
}

TEST_F(IfiAmpTest, UnitsThatGotCommandsAreLeftLocal) {
  EXPECT_TRUE(ifiAmp.IfiInit(AmpControl::Generic, 230));
  EXPECT_TRUE(Out(gpib.CloseAll()).empty());
  bus.FailLine("> 10 8", gpib::kEabo);  // it may have got it all the same
  EXPECT_FALSE(ifiAmp.IfiInit(AmpControl::Ifi, 215));
  Took();
  EXPECT_TRUE(gpib.CloseAll());
  EXPECT_THAT(bus.Lines(), testing::IsSupersetOf({"LOCAL 9", "LOCAL 10"}));
  Took();
  EXPECT_TRUE(Out(gpib.CloseAll()).empty());
}

TEST_F(IfiAmpTest, ResetsWithoutSwitchingTheLowBandOnAndWithoutWaiting) {
  const auto start = t.clock.TickMs();
  EXPECT_EQ(Out(ifiAmp.IfiInit(AmpControl::Ifi, 215)), kReset);
  EXPECT_EQ(t.clock.TickMs(), start);
  EXPECT_TRUE(ifiAmp.IfiSetBand(500));
  Out(ifiAmp.IfiReset());
  // forgotten by the reset
  EXPECT_EQ(Out(ifiAmp.IfiSetBand(500)), kHigh);
}

TEST_F(IfiAmpTest, ChangesOverOnlyWhenTheBandChanges) {
  Start(0);
  t.shell.delay.RequestHalt();  // must not shorten the change-over
  const auto start = t.clock.TickMs();
  EXPECT_EQ(Out(ifiAmp.IfiSetBand(100)), kLow);
  EXPECT_EQ(t.clock.TickMs() - start, 2000);
  EXPECT_TRUE(ifiAmp.IfiSetBand(150));
  EXPECT_TRUE(Out(ifiAmp.IfiSetBand(215)).empty());
  EXPECT_EQ(Out(ifiAmp.IfiSetBand(215.001)), kHigh);
  EXPECT_EQ(t.clock.TickMs() - start, 4000);
  EXPECT_TRUE(Out(ifiAmp.IfiSetBand(300)).empty());
}

TEST_F(IfiAmpTest, AFailedCommandStopsTheChangeOverAndLeavesItToBeRepeated) {
  for (const bool high : {false, true}) {
    const Strings& sequence = high ? kHigh : kLow;
    for (int n = 2; n <= static_cast<int>(sequence.size()); ++n) {
      SCOPED_TRACE(sequence[static_cast<std::size_t>(n - 1)]);
      TestStation s;
      s.Out(s.ifiAmp.IfiInit(AmpControl::Ifi, 215));
      s.bus.FailCall(n, gpib::kEnol);
      EXPECT_TRUE(FailsWith(s.ifiAmp.IfiSetBand(high ? 300 : 100), "Error sending command to amps\r\n"));
      EXPECT_EQ(s.Took().size(), static_cast<std::size_t>(n));
      EXPECT_TRUE(s.ifiAmp.IfiSetBand(high ? 300 : 100));
      EXPECT_EQ(s.Took(), sequence);
      s.bus.FailCall(std::min(n, static_cast<int>(kHigh.size())), gpib::kEnol);
      EXPECT_FALSE(s.ifiAmp.IfiSetBand(high ? 100 : 300));
      s.Took();
      EXPECT_TRUE(s.ifiAmp.IfiSetBand(high ? 300 : 100));
      EXPECT_EQ(s.Took(), sequence) << "it is not the band before the change-over any more";
    }
  }
}

TEST_F(IfiAmpTest, NeverChangesOverWhenRfCanNotBeSwitchedOff) {
  Start(100);
  bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
  EXPECT_TRUE(FailsWith(ifiAmp.IfiSetBand(300), "Error setting SigGen RF off. \r\n"));
  EXPECT_EQ(Took(), (Strings{"> 18 OUTP OFF !2"}));
}

TEST_F(IfiAmpTest, NeverChangesOverUnderTheLevelOfAGeneratorWithoutRfOff) {
  Redefine(sigGen, [](auto& d) { d.RfOff = ""; });
  Start(100);
  RfOnAt(100, -10);
  EXPECT_TRUE(ifiAmp.IfiSetBand(300));
  Strings expected = kHigh;
  expected[0] = "> 18 POW -120.0 DBM";
  EXPECT_EQ(Took(), expected);
}

TEST_F(IfiAmpTest, ReadsThePowerOfTheSelectedUnit) {
  Start(0);
  EXPECT_TRUE(FailsSilently(ifiAmp.IfiReadPower()));
  EXPECT_TRUE(Took().empty());
  Out(ifiAmp.IfiSetBand(100));
  bus.Answer(10, "0100 0200\r\n");
  ExpectPowers(200, 100);
  EXPECT_EQ(Took(), (Strings{"> 10 RP\\r\\n", "< 10 0100 0200\\r\\n"}));
  EXPECT_TRUE(ifiAmp.IfiSetBand(300));
  bus.Answer(9, "50.00 10.01");
  ExpectPowers(50.0F, 10.01F);
}

TEST_F(IfiAmpTest, AFigureThatAShortAnswerLacksIsZero) {
  for (const auto& [frequencyMHz, answer, first, second] :
       {std::tuple<double, const char*, float, float>{300, "", 0, 0},
        {300, "50.00", 50, 0},
        {300, " 10", 0, 10},
        {100, "", 0, 0},
        {100, "0100", 0, 100},
        {100, "0100 02", 2, 100}}) {
    SCOPED_TRACE(testing::Message() << frequencyMHz << ": " << answer);
    Start(frequencyMHz);
    bus.fallback = [shown = answer](int, const std::string&) { return shown; };
    ExpectPowers(first, second);
  }
}

TEST_F(IfiAmpTest, AnAnswerThatIsNoPowerIsShown) {
  Start(300);
  bus.fallback = [](int, const std::string&) { return "9E99 1\r\n"; };
  EXPECT_EQ(Told(ifiAmp.IfiReadPower()), Strings{"The amplifier's answer is no power:\r\n\"9E99 1\""});
}

}  // namespace
}  // namespace hylden
