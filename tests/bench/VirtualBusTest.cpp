#include "bench/VirtualBus.h"

#include <gtest/gtest.h>

#include "bench/BareBench.h"

namespace hylden {
namespace {

/// A station whose meter answers "VALUE 50.000 DBUV" when it is asked.
BareBench Answering() {
  BenchEquipment station = SmallStation();
  station.Meter->Trigger = "";
  BenchConfig config = Noiseless();
  config.MeterAnswer = "VALUE {level} DBUV";
  return BareBench(station, config);
}

constexpr const char* kAnswer = "VALUE 50.000 DBUV";

TEST(VirtualBus, AnAddressWithoutAListenerIsAnError) {
  BareBench rig;
  EXPECT_FALSE(rig.Send(5, "FR 1.0 MZ"));
  EXPECT_EQ(rig.cells.error, gpib::kEnol);
  EXPECT_EQ(rig.Read(5), "");
  EXPECT_EQ(rig.cells.error, gpib::kEabo);
  EXPECT_FALSE(rig.Send(31, "x"));
}

TEST(VirtualBus, FindsItsListenersAndPutsThemInRemote) {
  BareBench rig;
  const std::int16_t list[] = {0, 18, gpib::kNoAddr};
  std::int16_t found[2] = {-5, -5};
  rig.bench.Driver().FindLstn(0, list, found);
  EXPECT_TRUE(rig.Ok());
  EXPECT_EQ(rig.cells.longCount, 1);
  EXPECT_EQ(found[0], 18);
  rig.bench.Driver().SetRWLS(0, list);
  EXPECT_TRUE(rig.bench.Bus().IsRemote(18));
  rig.bench.Driver().EnableLocal(0, list);
  EXPECT_FALSE(rig.bench.Bus().IsRemote(18));
}

TEST(VirtualBus, AReadEndsAtTheMessageTheTerminationOrTheBuffer) {
  BareBench rig = Answering();
  rig.Send(13, "MK");
  EXPECT_EQ(rig.Read(13), kAnswer);
  EXPECT_TRUE(rig.cells.status & gpib::kEnd);
  rig.Send(13, "MK");
  EXPECT_EQ(rig.Read(13, '0'), "VALUE 50") << "up to the terminating byte";
  EXPECT_EQ(rig.Read(13, gpib::kStopEnd, 4), ".000") << "the rest waits";
  rig.Send(13, "MK");
  EXPECT_EQ(rig.Read(13), kAnswer) << "a new question replaces what nobody fetched";
}

TEST(VirtualBus, AReadThatNobodyAnswersTakesItsTimeLimit) {
  BareBench rig = Answering();
  std::int64_t passed = 0;
  rig.bench.Bus().passTime = [&](std::int64_t ms) { passed += ms; };
  rig.bench.Driver().ibtmo(0, gpib::kT30ms);
  EXPECT_EQ(rig.Read(13), "");
  EXPECT_EQ(passed, 30);
  EXPECT_EQ(rig.cells.error, gpib::kEabo);
  EXPECT_TRUE(rig.cells.status & gpib::kTimo);
}

TEST(Fault, AFailedCallGetsNothingThroughAndTheBusCountsEveryCall) {
  BareBench rig;
  rig.bench.Inject({FaultKind::Fail, BenchRole::SigGen, 2});
  EXPECT_TRUE(rig.Send(13, "CF 1.0 MZ"));
  EXPECT_TRUE(rig.Send(18, "FR 10.0 MZ"));
  EXPECT_FALSE(rig.Send(18, "R1"));
  EXPECT_EQ(rig.cells.error, gpib::kEabo);
  EXPECT_FALSE(rig.bench.State().Generator.RfOn);
  EXPECT_TRUE(rig.Send(18, "R1")) << "only that call fails";
  rig.bench.Inject({FaultKind::Fail, BenchRole::Bus, 3});
  rig.bench.Driver().SendIFC(0);
  EXPECT_TRUE(rig.Ok());
  EXPECT_TRUE(rig.Send(13, "CF 1.0 MZ"));
  EXPECT_FALSE(rig.Send(14, "TA"));
  rig.bench.Inject({FaultKind::Absent, BenchRole::SigGen, 2});
  EXPECT_TRUE(rig.Send(18, "R1"));
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(rig.Send(18, "R0")) << "it stays away";
  EXPECT_EQ(rig.cells.error, gpib::kEnol);
}

TEST(Fault, ALateAnswerTimesOutAndIsReadAsTheNextOne) {
  BareBench rig = Answering();
  rig.bench.Inject({FaultKind::Late, BenchRole::Meter, 1, 12000});
  rig.Send(13, "MK");
  EXPECT_EQ(rig.Read(13), "");
  EXPECT_TRUE(rig.cells.status & gpib::kTimo);
  rig.clock.Advance(12000);
  rig.Send(13, "RL 40.0 DB");
  rig.Send(13, "MK");
  EXPECT_EQ(rig.Read(13), kAnswer) << "the late one first";
  EXPECT_EQ(rig.Read(13), "VALUE 0.000 DBUV");
}

TEST(Fault, GarbageAndSilenceHitTheChosenAnswer) {
  BareBench rig = Answering();
  rig.bench.Inject({FaultKind::Garbage, BenchRole::Meter, 2});
  rig.bench.Inject({FaultKind::Silent, BenchRole::Meter, 3});
  std::vector<std::string> answers;
  for (int i = 0; i < 4; ++i) {
    rig.Send(13, "MK");
    answers.push_back(rig.Read(13));
  }
  EXPECT_EQ(answers[0], kAnswer);
  EXPECT_EQ(answers[1].find_first_of("0123456789"), std::string::npos);
  EXPECT_FALSE(answers[1].empty());
  EXPECT_EQ(answers[2], "");
  EXPECT_EQ(answers[3], kAnswer);
}

TEST(Fault, ProtectionTakesTwentyDbOffTheGain) {
  BareBench rig;
  rig.Drive(10, -30);
  const double before = rig.bench.State().ForwardDbm;
  rig.bench.Inject({FaultKind::Protection, BenchRole::Bus, 1});
  rig.Send(13, "TS");
  EXPECT_NEAR(before - rig.bench.State().ForwardDbm, 20, 0.01);
}

TEST(VirtualBus, InstrumentsAtOneAddressHearTheSameMessages) {
  BenchEquipment station = SmallStation();
  station.PowerMeterAddress = station.MeterAddress;
  BareBench rig(station);
  for (const char* command : {"CF 10.0 MZ", "TA", "TS", "MK", "RA"}) EXPECT_TRUE(rig.Send(13, command));
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
}

TEST(Ifi, TheSelectedBandAmplifiesAndAnswersItsPowers) {
  BenchEquipment station = SmallStation();
  station.IfiAmplifier = true;
  BareBench rig(station);
  const auto send = [&](int address, const char* text) { EXPECT_TRUE(rig.Send(address, std::string(text) + "\r\n")); };
  rig.Drive(100, -12);
  EXPECT_LT(rig.bench.State().ForwardDbm, -40) << "no band is selected";
  send(9, "B1"), send(10, "9"), send(9, "ZA");
  EXPECT_GT(rig.bench.State().ForwardDbm, 30);
  send(10, "RP");
  EXPECT_EQ(rig.Read(10), "0000 0003");
  rig.Drive(230, -8);
  send(9, "FA"), send(10, "8");
  EXPECT_LT(rig.bench.State().ForwardDbm, -40);
  for (const char* text : {"L3", "M1", "ON", "B2", "ZA"}) send(9, text);
  EXPECT_GT(rig.bench.State().ForwardDbm, 30);
  send(9, "RP");
  const std::string answer = rig.Read(9);
  EXPECT_NEAR(std::stod(answer), Conversions::DbmToWatts(rig.bench.State().ForwardDbm), 0.01);
  EXPECT_NEAR(std::stod(answer.substr(answer.find(' '))), Conversions::DbmToWatts(rig.bench.State().ReverseDbm), 0.01);
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
  rig.Drive(100, -12);
  EXPECT_LT(rig.bench.State().ForwardDbm, 0) << "in the band of the other";
}

}  // namespace
}  // namespace hylden
