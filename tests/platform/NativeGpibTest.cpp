#include "platform/native/NativeGpib.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "support/ScriptedBus.h"
#include "support/TempDir.h"
#include "support/TestLibrary.h"

namespace hylden {
namespace {

/// What a bus library has been asked, and what it says.
struct FakeLibrary {
  std::vector<std::string> calls;
  int status = gpib::kCmpl, error = 0;
  long count = 0;
} library;

std::string Joined(const std::uint16_t* addresses) {
  std::string text = std::to_string(*addresses);
  while (*++addresses != 0xFFFF) text += " " + std::to_string(*addresses);
  return text;
}

using Functions = std::map<std::string, void*>;

/// The address of a function without captures.
void* Address(auto function) {
  return reinterpret_cast<void*>(+function);
}

Functions AllFunctions() {
  using List = const std::uint16_t*;
  static const auto note = [](std::string line, const auto&... values) {
    ((line += std::string(" ") + values), ...);
    library.calls.push_back(line);
  };
  static const auto text = [](long number) { return std::to_string(number); };
  return {{"SendIFC", Address([](int board) { note("IFC", text(board)); })},
          {"FindLstn", Address([](int, List addresses, std::uint16_t* results, int limit) {
             note("FIND", Joined(addresses), "limit", text(limit));
             results[0] = 18;
           })},
          {"SetRWLS", Address([](int, List addresses) { note("REMOTE", Joined(addresses)); })},
          {"EnableLocal", Address([](int, List addresses) { note("LOCAL", Joined(addresses)); })},
          {"Send", Address([](int, std::uint16_t address, const void* bytes, long count, int mode) {
             const std::string sent(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
             note(">", text(address), sent, "mode", text(mode));
           })},
          {"Receive", Address([](int, std::uint16_t address, void* buffer, long size, int termination) {
             note("<", text(address), "size", text(size), "until", text(termination));
             std::memcpy(buffer, "72.6", 4);
             library.count = 4;
           })},
          {"ibtmo", Address([](int, int code) {
             note("TMO", text(code));
             return 0;
           })},
          {"ThreadIbsta", Address([] { return library.status; })},
          {"ThreadIberr", Address([] { return library.error; })},
          {"ThreadIbcntl", Address([] { return library.count; })}};
}

/// A library of these functions.
GpibLibrary Library(Functions functions, bool isLinuxGpib = false) {
  return {"lib",
          {},
          [functions = std::move(functions)](const char* name) {
            const auto found = functions.find(name);
            return found == functions.end() ? nullptr : found->second;
          },
          isLinuxGpib};
}

class NativeGpibTest : public testing::Test {
 protected:
  NativeGpibTest() { library = FakeLibrary(); }
  GpibStatusCells cells_;
};

constexpr std::array<std::int16_t, 3> kAddresses = {0, 18, gpib::kNoAddr};

TEST_F(NativeGpibTest, HandsEveryCallToTheLibraryUnchanged) {
  NativeGpib driver(Library(AllFunctions()));
  EXPECT_EQ(driver.RegisterGpibGlobalsForThread(cells_), 0);
  std::array<std::int16_t, 2> found{};
  std::array<char, 64> buffer{};
  driver.SendIFC(0);
  driver.FindLstn(0, kAddresses, found);
  driver.SetRWLS(0, kAddresses);
  driver.Send(0, 18, "FREQ 100.0 MHZ", gpib::kDabEnd);
  driver.ibtmo(0, gpib::kT30ms);
  driver.Receive(0, 18, buffer, gpib::kStopEnd);
  EXPECT_EQ(cells_.longCount, 4);
  driver.EnableLocal(0, kAddresses);
  EXPECT_EQ(library.calls,
            (std::vector<std::string>{"IFC 0", "FIND 0 18 limit 2", "REMOTE 0 18", "> 18 FREQ 100.0 MHZ mode 2",
                                      "TMO 8", "< 18 size 64 until 256", "LOCAL 0 18"}));
  EXPECT_EQ(found[0], 18);
  EXPECT_EQ(std::string(buffer.data(), 4), "72.6");
}

TEST_F(NativeGpibTest, StatusComesFromTheLibraryAfterEveryCallWhateverItsNames) {
  Functions older = AllFunctions();
  for (const char* name : {"ThreadIbsta", "ThreadIberr", "ThreadIbcntl"}) older.erase(name);
  older["Ibsta"] = Address([] { return library.status; });
  older["Iberr"] = Address([] { return library.error; });
  older["Ibcnt"] = Address([] { return static_cast<int>(library.count); });
  for (const Functions& functions : {AllFunctions(), older}) {
    NativeGpib driver(Library(functions));
    driver.RegisterGpibGlobalsForThread(cells_);
    library.status = gpib::kErr | gpib::kCmpl;
    library.error = gpib::kEnol;
    library.count = 70000;
    driver.SendIFC(0);
    EXPECT_EQ(cells_.status, gpib::kErr | gpib::kCmpl);
    EXPECT_EQ(cells_.error, gpib::kEnol);
    EXPECT_EQ(cells_.longCount, 70000);
  }
}

TEST_F(NativeGpibTest, EachLibraryPutsEoiOnTheLastByteAndAddsNone) {
  for (const auto& [isLinuxGpib, call] : {std::pair{false, "> 18 OUTP OFF mode 2"}, {true, "> 18 OUTP OFF mode 1"}}) {
    library.calls.clear();
    NativeGpib driver(Library(AllFunctions(), isLinuxGpib), 3);
    driver.Send(0, 18, "OUTP OFF", gpib::kDabEnd);
    driver.SendIFC(0);
    EXPECT_EQ(library.calls, (std::vector<std::string>{call, "IFC 3"})) << "its own mode, and its own board";
  }
}

TEST_F(NativeGpibTest, ALibraryWithStatusCellsFillsThemByItself) {
  static std::array<std::int32_t*, 4> registered;
  Functions functions = AllFunctions();
  for (const char* name : {"ThreadIbsta", "ThreadIberr", "ThreadIbcntl"}) functions.erase(name);
  functions["RegisterGpibGlobalsForThread"] =
      Address([](std::int32_t* status, std::int32_t* error, std::int32_t* count, std::int32_t* longCount) {
        registered = {status, error, count, longCount};
        return 1;
      });
  functions["UnregisterGpibGlobalsForThread"] = Address([] { return 2; });
  NativeGpib driver(Library(functions));
  EXPECT_EQ(driver.RegisterGpibGlobalsForThread(cells_), 1);
  *registered[0] = gpib::kErr, *registered[1] = gpib::kEnol, *registered[3] = 65535;
  driver.SendIFC(0);
  EXPECT_EQ(cells_.status, gpib::kErr);
  EXPECT_EQ(cells_.error, gpib::kEnol);
  EXPECT_EQ(cells_.longCount, 65535);
  EXPECT_EQ(driver.UnregisterGpibGlobalsForThread(), 2);
}

TEST_F(NativeGpibTest, WithoutAWholeLibraryEveryCallFailsWithEdvrAndSaysWhatIsMissing) {
  Functions functions = AllFunctions();
  functions.erase("EnableLocal");
  Functions statusless = AllFunctions();
  statusless.erase("ThreadIbsta");
  const TempDir directory;
  const std::string noLibrary = directory.Write("libgpib.so.0", std::string(64, 'x'));
  const std::string otherProcessor = directory.Write("libgpib.so",
                                                     "\x7F"
                                                     "ELF\x01\x01\x01" +
                                                         std::string(57, '\0'));
  for (const auto& [found, advice] :
       {std::pair{Library(functions), std::string("The GPIB library lib has no function EnableLocal.")},
        {Library(statusless), "The GPIB library lib has no function ThreadIbsta."},
        {OpenGpibLibrary(HYLDEN_TEST_LIBRARIES "incomplete.so"),
         "The GPIB library " HYLDEN_TEST_LIBRARIES "incomplete.so has no function EnableLocal."},
        {OpenGpibLibrary("libgpib.so.99"), "The GPIB library libgpib.so.99 can't be loaded: libgpib.so.99: "},
        {OpenGpibLibrary(otherProcessor),
         "The GPIB library " + otherProcessor + " can't be loaded: it is made for another kind of processor ("},
        {OpenGpibLibrary(noLibrary), "The GPIB library " + noLibrary + " can't be loaded: the file is no library ("}}) {
    NativeGpib driver(found);
    EXPECT_EQ(driver.RegisterGpibGlobalsForThread(cells_), 0);
    std::array<char, 64> buffer{};
    const auto expectFailure = [&](const char* call) {
      EXPECT_TRUE(cells_.status & gpib::kErr) << call;
      EXPECT_EQ(cells_.error, gpib::kEdvr) << call;
      cells_ = {0, 99, 5, 5};
    };
    cells_ = {0, 99, 5, 5};
    driver.SendIFC(0), expectFailure("SendIFC");
    driver.SetRWLS(0, kAddresses), expectFailure("SetRWLS");
    driver.Send(0, 18, "RF OFF", gpib::kDabEnd), expectFailure("Send");
    driver.Receive(0, 18, buffer, gpib::kStopEnd), expectFailure("Receive");
    driver.ibtmo(0, gpib::kT10s), expectFailure("ibtmo");
    driver.EnableLocal(0, kAddresses), expectFailure("EnableLocal");
    EXPECT_TRUE(driver.Advice().starts_with(advice)) << driver.Advice();
  }
  EXPECT_TRUE(library.calls.empty());
}

TEST(NativeGpibChatter, WhatALibraryWritesToStandardErrorIsKeptFromTheTerminal) {
  ScriptedBus bus;
  GpibLibrary opened = OpenTestLibrary(kLinuxGpib, bus);
  const auto let = reinterpret_cast<void (*)(const char*)>(opened.Find("test_chatter"));
  NativeGpib driver(opened);
  testing::internal::CaptureStderr();
  let("libgpib: no such device\n");
  driver.SendIFC(0);
  driver.ibtmo(0, gpib::kT10s);
  EXPECT_EQ(driver.TakeChatter(), "libgpib: no such device\nlibgpib: no such device\n");
  EXPECT_EQ(driver.TakeChatter(), "");
  for (const char* const piece : {"1", "2"}) {
    const std::string much(ErrorCapture::kMost, *piece);
    let(much.c_str());
    driver.SendIFC(0);
  }
  EXPECT_EQ(driver.TakeChatter(), std::string(ErrorCapture::kMost, '2'));
  std::fputs("the program's own", stderr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "the program's own");
}

TEST(NativeGpibWay, NamesLibraryBoardAndVersionOrWhatIsMissing) {
  ScriptedBus bus;
  const std::string file = HYLDEN_TEST_LIBRARIES;
  EXPECT_EQ(NativeGpib(OpenTestLibrary(kLinuxGpib, bus)).Way(18),
            "GPIB library " + file + kLinuxGpib + ", board 0, version 4.3.6");
  EXPECT_EQ(NativeGpib(OpenTestLibrary(kNi4882, bus), 1).Way(18), "GPIB library " + file + kNi4882 + ", board 1");
  const NativeGpib none(OpenGpibLibrary("libgpib.so.99"));
  EXPECT_EQ(none.Way(18), none.Advice());
}

TEST(BoardAdvice, NamesWhatTheBoardLacks) {
  const TempDir directory;
  const std::string device = directory.File("gpib0"), configuration = directory.File("gpib.conf");
  EXPECT_TRUE(BoardAdvice(device, {configuration}).starts_with("There is no " + device + ": the board's kernel"));
  directory.Write("gpib0", "");
  EXPECT_TRUE(BoardAdvice(device, {configuration}).starts_with("There is no " + configuration));
  directory.Write("gpib.conf", "");
  EXPECT_EQ(BoardAdvice(device, {configuration}), "");
}

}  // namespace
}  // namespace hylden
