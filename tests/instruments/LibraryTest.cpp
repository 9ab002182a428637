// The drivers on a bus that a real shared library drives.

#include "platform/native/NativeGpib.h"
#include "support/TestLibrary.h"
#include "support/TestStation.h"

namespace hylden {
namespace {

/// The sample generator on a library; its bus keeps the bytes, and wants EOI on the last one of each command.
struct OnLibrary {
  explicit OnLibrary(const char* file) : driver(OpenTestLibrary(file, bus)) { sigGen.PutDefinition(SampleSigGen()); }

  ScriptedBus bus;
  NativeGpib driver;
  TestShell t{driver};
  Instruments instruments{t.shell};
  Gpib& gpib = instruments.gpib;
  SigGen& sigGen = instruments.sigGen;
};

class LibraryTest : public testing::TestWithParam<const char*> {};

TEST_P(LibraryTest, PutsTheDefinedEndAndEoiOnTheBusAndNothingElse) {
  const std::tuple<int, const char*, const char*> cases[] = {
      {0, "> 18 OUTP OFF", "72.5\r\n9"}, {1, "> 18 OUTP OFF\\r", "72.5\r"}, {2, "> 18 OUTP OFF\\r\\n", "72.5\r\n"}};
  for (const auto& [endOfString, sent, read] : cases) {
    OnLibrary s(GetParam());
    Redefine(s.sigGen, [code = endOfString](auto& d) { d.EndOfString = code; });
    EXPECT_TRUE(s.sigGen.RfOff());
    EXPECT_EQ(s.bus.Lines(), (Strings{sent}));
    Terminator terminator;
    terminator.Derive(endOfString);
    s.bus.Answer(13, "72.5\r\n9");
    std::string answer;
    EXPECT_TRUE(s.gpib.Receive(13, answer, terminator.ReadTermination));
    EXPECT_EQ(answer, read);
  }
}

TEST_P(LibraryTest, StatusWordsAreThoseOfTheCall) {
  OnLibrary s(GetParam());
  EXPECT_TRUE(s.gpib.Send(18, std::string(65535, 'A')));
  EXPECT_EQ(s.gpib.ibcnt, -1);
  EXPECT_EQ(s.gpib.ibcntl, 65535);
  EXPECT_EQ(s.gpib.IbcntText(), "\r\nibcnt = 0xFFFF");
  s.bus.FailLine("> 18 ", gpib::kEnol);
  EXPECT_TRUE(FailsWith(s.gpib.Send(18, "A", "Lost"),
                        "Lost\r\nibsta = &H8120 < ERR CMPL CIC>\r\n"
                        "iberr = ENOL <No Listener>\r\nibcnt = 0x0"));
}

INSTANTIATE_TEST_SUITE_P(Shapes, LibraryTest, testing::Values(kLinuxGpib, kNi4882, kRenamed));

TEST(LibraryRegistration, IsRepeatedOrEndsTheProgramAsTheLibrarySays) {
  const std::tuple<int, Strings, std::string> cases[] = {
      {1, {"REGISTER", "UNREGISTER", "REGISTER"}, ""},
      {2, {"REGISTER", "UNREGISTER"}, "Operating System is not multi-threaded. Quitting the Program!"},
      {3, {"REGISTER", "UNREGISTER"}, "Unable to register GPIB thread globals. Quitting the Program!"},
      {7, {"REGISTER"}, "Unknown Error for Registering GPIB Globals!!! Quitting the Program!"}};
  for (const auto& [result, calls, text] : cases) {
    SCOPED_TRACE(result);
    OnLibrary s(kNi4882);
    s.bus.registrationResults = {result};
    if (text.empty()) {
      EXPECT_TRUE(s.gpib.Send(1, "A"));
      EXPECT_EQ(s.gpib.ibcnt, 1) << "the cells are not the ones registered";
    } else {
      EXPECT_THROW(s.gpib.Send(1, "A"), ProgramEnd);
      EXPECT_EQ(s.t.dialogs.LastText(), text);
    }
    EXPECT_EQ(s.bus.registrations, calls);
  }
}

}  // namespace
}  // namespace hylden
