#include "instruments/Gpib.h"

#include "support/ReadLines.h"
#include "support/TestStation.h"

namespace hylden {
namespace {

TEST(Gpib, ClearsTheInterfaceOnceAndTriesAgainAfterAFailure) {
  TestStation s;
  s.bus.FailCall(1, 4);
  EXPECT_TRUE(FailsWith(s.gpib.GpibIfc(),
                        "Error sending IFC.\r\nibsta = &H8120 < ERR CMPL CIC>\r\niberr = EARG <Invalid argument>"
                        "\r\nibcnt = 0x0"));
  EXPECT_TRUE(s.gpib.GpibIfc());
  EXPECT_TRUE(s.gpib.GpibIfc());
  EXPECT_EQ(s.Took(), (Strings{"IFC !4", "IFC", "TMO 13"}));
}

TEST(Gpib, TheInterfaceIsClearedAnewWhenTheBoardWasLostButNotForADevice) {
  for (const auto& [error, again] : {std::pair{gpib::kEdvr, true},
                                     {gpib::kEcic, true},
                                     {gpib::kEneb, true},
                                     {gpib::kEoip, true},
                                     {gpib::kEnol, false},
                                     {gpib::kEabo, false}}) {
    TestStation s;
    EXPECT_TRUE(s.gpib.GpibIfc());
    s.bus.FailLine("> 18 A", error);
    EXPECT_FALSE(s.gpib.Send(18, "A"));
    s.Took();
    EXPECT_TRUE(s.gpib.GpibIfc());
    EXPECT_EQ(s.Took(), again ? (Strings{"IFC", "TMO 13"}) : Strings{}) << error;
  }
}

TEST(Gpib, NoBusWithoutATimeLimitCountsAsCleared) {
  TestStation s;
  s.bus.FailLine("TMO 13", gpib::kEdvr);
  EXPECT_TRUE(FailsWith(s.gpib.GpibIfc(), "Error sending IFC.\r\n"));
}

TEST(Gpib, OpensWithoutAnInitCommandAndWaitsTwoSecondsDespiteAHalt) {
  TestStation s;
  s.t.shell.delay.RequestHalt();
  const auto start = s.t.clock.TickMs();
  EXPECT_TRUE(s.gpib.GpibOpen(7, "", "PwrMtr"));
  EXPECT_EQ(s.Took(), (Strings{"FIND 7", "REMOTE 7"}));
  EXPECT_EQ(s.t.clock.TickMs() - start, 2000);
}

TEST(Gpib, OpenAndCloseTellWhichStepFailed) {
  const Strings texts = {"Error finding Meter\r\n", "Error in setting Meter to remote mode. \r\n",
                         "Error initializing Meter\r\n"};
  for (int step = 1; step <= 3; ++step) {
    SCOPED_TRACE(step);
    TestStation s;
    s.bus.FailCall(step, gpib::kEnol);
    EXPECT_TRUE(FailsWith(s.gpib.GpibOpen(13, "IP\r", "Meter"), texts[static_cast<std::size_t>(step - 1)]));
    EXPECT_EQ(s.bus.Calls(), step);
  }
  TestStation s;
  s.bus.FailCall(1, gpib::kEnol);
  EXPECT_TRUE(FailsWith(s.gpib.GpibClose(13, "Meter"), "Error closing Meter\r\n"));
}

TEST(Gpib, ABoardThatCanNotTellWhoListensFindsADeviceByItsFirstCommand) {
  TestStation s;
  s.t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  const WorkingDirectory at(s.t.directory.Path());
  EXPECT_FALSE(s.gpib.LacksLineStatus());
  for (int times = 0; times < 6; ++times) s.bus.FailLine("FIND", gpib::kEcap);
  EXPECT_TRUE(s.gpib.GpibOpen(13, "IP\r", "Meter"));
  EXPECT_TRUE(s.gpib.GpibOpen(7, "", "PwrMtr", "\r\n"));
  EXPECT_EQ(s.Took(), (Strings{"FIND 13 !11", "REMOTE 13", "> 13 IP\\r", "FIND 7 !11", "REMOTE 7", "> 7 \\r\\n"}));
  s.bus.absent = {13, 7};
  EXPECT_TRUE(FailsWith(s.gpib.GpibOpen(13, "IP\r", "Meter"), "Error finding Meter\r\n"));
  EXPECT_TRUE(FailsWith(s.gpib.GpibOpen(7, "", "PwrMtr"), "Error finding PwrMtr\r\n"));
  EXPECT_TRUE(s.gpib.LacksLineStatus());
  EXPECT_EQ(ReadLines("runlog.hyl").size(), 1U) << "told once";
  Redefine(s.sigGen, [](auto& d) { d.InitString = ""; });
  EXPECT_TRUE(s.sigGen.InitSigGen(0, -60));
  EXPECT_EQ(s.bus.transcript.SentTo(18).front(), "\\n") << "none is the end, and a line feed stands for it";
}

TEST(Gpib, WhateverWasPutInRemoteIsBroughtBackToLocalOnceAlsoAfterAFailure) {
  auto s = std::make_unique<TestStation>();
  s->bus.FailLine("REMOTE 18", gpib::kEabo);  // it may be in remote all the same
  EXPECT_FALSE(s->gpib.GpibOpen(18, "", "SigGen"));
  s->bus.FailLine("> 13 IP", gpib::kEabo);
  EXPECT_FALSE(s->gpib.GpibOpen(13, "IP", "Meter"));
  EXPECT_TRUE(s->gpib.GpibOpen(7, "", "PwrMtr"));
  EXPECT_TRUE(s->gpib.GpibClose(7, "PwrMtr"));
  s->bus.FailLine("FIND 5", gpib::kEnol);
  EXPECT_FALSE(s->gpib.GpibOpen(5, "", "Meter"));
  EXPECT_TRUE(s->gpib.GpibIfc());
  s->Took();
  s->bus.FailLine("LOCAL 13", gpib::kEnol);
  EXPECT_TRUE(FailsWith(s->gpib.CloseAll(), "Error closing Meter\r\n"));
  EXPECT_EQ(s->Took(), (Strings{"LOCAL 13 !2", "LOCAL 18"}));
  Strings atTheEnd;
  s->bus.transcript.onLine = [&](const std::string& line) { atTheEnd.push_back(line); };
  s.reset();
  EXPECT_EQ(atTheEnd, (Strings{"LOCAL 13"})) << "the program ends";
}

TEST(Gpib, CutsAnAnswerAtItsBytesBeforeDecodingIt) {
  TestStation s;
  std::string answer;
  s.bus.Answer(13, std::string(63, '1') + "\xB5" + std::string(36, '2'));
  EXPECT_TRUE(s.gpib.Receive(13, answer, gpib::kStopEnd));
  EXPECT_EQ(answer, std::string(63, '1') + "\xC2\xB5");
}

TEST(Gpib, TheRestOfALongAnswerIsNotTheNextOne) {
  // The rest is thrown away in so many reads.
  const std::tuple<std::size_t, int, std::size_t> cases[] = {
      {63, '\n', 0},          {64, '\n', 1}, {64, gpib::kStopEnd, 1}, {200, '\n', 3}, {200, gpib::kStopEnd, 3},
      {63, gpib::kStopEnd, 0}};
  for (const auto& [length, termination, pieces] : cases) {
    SCOPED_TRACE(testing::Message() << length << " until " << termination);
    TestStation s;
    s.bus.Answers(13, {std::string(length, '1') + "\n", "72.5\n"});
    std::string answer;
    EXPECT_TRUE(s.gpib.Receive(13, answer, termination));
    EXPECT_EQ(answer, (std::string(length, '1') + "\n").substr(0, 64));
    EXPECT_EQ(s.gpib.ibcnt, 64) << "the status is not that of the answer";
    const Strings lines = s.Took();
    EXPECT_EQ(lines.size(), pieces == 0 ? 1 : pieces + 3);
    EXPECT_EQ(lines.size() > 1 ? lines.back() : "TMO 13", "TMO 13");
    EXPECT_TRUE(s.gpib.Receive(13, answer, termination));
    EXPECT_EQ(answer, "72.5\n");
  }
}

TEST(Gpib, ADrainReadsAStaleAnswerToItsEnd) {
  TestStation s;
  s.bus.StaleAnswer(13, std::string(150, '1'));
  s.bus.Answer(13, "72.5");
  s.gpib.Drain(13);
  std::string answer;
  EXPECT_TRUE(s.gpib.Receive(13, answer, gpib::kStopEnd));
  EXPECT_EQ(answer, "72.5");
}

TEST(Gpib, ADrainReadsAwaySeveralAnswersButNotThoseOfADeviceThatHasAlwaysOneMore) {
  TestStation s;
  for (const bool always : {false, true}) {
    s.bus.StaleAnswer(13, "1\n");
    s.bus.transcript.onLine = [&](const std::string& line) {
      if (line == "< 13 1\\n" || (always && line.starts_with("<"))) s.bus.StaleAnswer(13, "2\n");
    };
    s.gpib.Drain(13);
    EXPECT_EQ(s.Took(), always ? (Strings{"TMO 8", "< 13 1\\n", "< 13 2\\n", "< 13 2\\n", "< 13 2\\n", "TMO 13"})
                               : (Strings{"TMO 8", "< 13 1\\n", "< 13 2\\n", "< 13 !6", "TMO 13"}));
  }
}

TEST(Gpib, AnInstrumentThatNeverStopsTalkingHoldsNobodyUp) {
  TestStation s;
  s.bus.StaleAnswer(13, std::string(100'000, '1'));
  s.gpib.Drain(13);
  EXPECT_LT(s.bus.Calls(), 1100);
}

TEST(Gpib, ABusThatHangsIsWaitedForLessAndLessUntilADeviceRespondsOrWorkStartsAnew) {
  TestStation s;
  EXPECT_TRUE(s.gpib.GpibIfc());
  s.bus.FailLine("> 13 A", gpib::kEabo);
  s.bus.FailLine("> 18 B", gpib::kEabo);
  EXPECT_FALSE(s.gpib.Send(13, "A"));
  EXPECT_FALSE(s.gpib.Send(18, "B"));
  EXPECT_TRUE(s.gpib.Send(7, "C"));
  EXPECT_TRUE(s.gpib.Send(7, "D"));
  EXPECT_TRUE(s.gpib.GpibClose(13, "Meter"));  // says nothing about the device
  EXPECT_TRUE(s.gpib.Send(13, "E"));
  EXPECT_EQ(s.Took(), (Strings{"IFC", "TMO 13", "> 13 A !6", "TMO 12", "> 18 B !6", "TMO 13", "TMO 11", "> 7 C",
                               "TMO 13", "> 7 D", "TMO 12", "LOCAL 13", "TMO 13", "TMO 12", "> 13 E", "TMO 13"}));
  EXPECT_TRUE(s.gpib.GpibIfc());
  EXPECT_TRUE(s.gpib.Send(18, "F"));
  EXPECT_EQ(s.Took(), (Strings{"> 18 F"}));
}

TEST(Gpib, SendsEightBitCharacters) {
  TestStation s;
  EXPECT_TRUE(s.gpib.Send(13, "UNIT \xC2\xB5V"));
  EXPECT_EQ(s.Took(), (Strings{"> 13 UNIT \\xB5V"}));
}

TEST(Gpib, DecodesEveryStatusIntoTheReport) {
  const std::tuple<int, int, int, const char*> cases[] = {
      {0x8100, 0, 0, "Lost\r\nibsta = &H8100 < ERR CMPL>\r\niberr = EDVR <DOS Error>\r\nibcnt = 0x0"},
      {0xFFFF, 20, 10,
       "Lost\r\nibsta = &HFFFF < ERR TIMO END SRQI RQS CMPL LOK REM CIC ATN TACS LACS DTAS DCAS>"
       "\r\niberr = ETAB <Table overflow>\r\nibcnt = 0xA"},
      {0x8000, 8, 65535, "Lost\r\nibsta = &H8000 < ERR>\r\nibcnt = 0xFFFF"},
      {0x0600, 6, 0, "Lost\r\nibsta = &H600 <>\r\nNo error, iberr =  6\r\nibcnt = 0x0"},
      {0x0100, -1, 0, "Lost\r\nibsta = &H100 < CMPL>\r\nNo error, iberr = -1\r\nibcnt = 0x0"},
  };
  for (const auto& [status, error, count, text] : cases) {
    SCOPED_TRACE(text);
    TestStation s;
    s.gpib.ibsta = static_cast<std::int16_t>(status);
    s.gpib.iberr = static_cast<std::int16_t>(error);
    s.gpib.ibcnt = static_cast<std::int16_t>(count);
    const Message box = s.gpib.GpibError("Lost").Boxes().at(0);
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.icon, MessageIcon::Exclamation);
  }
}

TEST(Gpib, AFailureEndsWithWhatTheDriverSaysOfItsWay) {
  TestStation s;
  s.bus.advice = "There is no GPIB library on this computer.";
  s.gpib.ibsta = static_cast<std::int16_t>(gpib::kErr);
  EXPECT_EQ(
      s.gpib.GpibError("Error sending IFC.").Boxes().at(0).text,
      "Error sending IFC.\r\nibsta = &H8000 < ERR>\r\niberr = EDVR <DOS Error>\r\nibcnt = 0x0\r\n" + s.bus.advice);
}

TEST(Gpib, RegistersOnceOrEndsTheProgramWithItsMessage) {
  const std::tuple<int, Strings, std::string> cases[] = {
      {0, {"REGISTER"}, ""},
      {1, {"REGISTER", "UNREGISTER", "REGISTER"}, ""},
      {2, {"REGISTER", "UNREGISTER"}, "Operating System is not multi-threaded. Quitting the Program!"},
      {3, {"REGISTER", "UNREGISTER"}, "Unable to register GPIB thread globals. Quitting the Program!"},
      {7, {"REGISTER"}, "Unknown Error for Registering GPIB Globals!!! Quitting the Program!"},
  };
  for (const auto& [result, calls, message] : cases) {
    SCOPED_TRACE(result);
    TestStation s;
    s.bus.registrationResults = {result};
    if (message.empty()) {
      EXPECT_TRUE(s.gpib.Send(1, "A"));
      EXPECT_TRUE(s.gpib.Send(1, "B"));
    } else {
      EXPECT_THROW(s.gpib.Send(1, "A"), ProgramEnd);
      EXPECT_EQ(s.t.dialogs.LastText(), message);
      EXPECT_EQ(s.t.dialogs.messages.at(0).icon, MessageIcon::Critical);
      EXPECT_TRUE(s.Took().empty());
    }
    EXPECT_EQ(s.bus.registrations, calls);
  }
}

}  // namespace
}  // namespace hylden
