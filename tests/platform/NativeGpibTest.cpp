#include "platform/native/NativeGpib.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace hylden {
namespace {

/// What a bus library has been asked, and what it says.
struct FakeLibrary {
  std::vector<std::string> calls;
  int status = gpib::kCmpl, error = 0;
  long count = 0;
} library;

std::string List(const std::uint16_t* addresses) {
  std::string text;
  while (*addresses != 0xFFFF) text += " " + std::to_string(*addresses++);
  return text;
}

void LibSendIFC(int board) {
  library.calls.push_back("IFC " + std::to_string(board));
}
void LibFindLstn(int, const std::uint16_t* addresses, std::uint16_t* results, int limit) {
  library.calls.push_back("FIND" + List(addresses) + " limit " + std::to_string(limit));
  results[0] = 18;
}
void LibSetRWLS(int, const std::uint16_t* addresses) {
  library.calls.push_back("REMOTE" + List(addresses));
}
void LibEnableLocal(int, const std::uint16_t* addresses) {
  library.calls.push_back("LOCAL" + List(addresses));
}
void LibSend(int, std::uint16_t address, const void* bytes, long count, int mode) {
  const std::string text(static_cast<const char*>(bytes), static_cast<std::size_t>(count));
  library.calls.push_back("> " + std::to_string(address) + " " + text + " mode " + std::to_string(mode));
}
void LibReceive(int, std::uint16_t address, void* buffer, long size, int termination) {
  library.calls.push_back("< " + std::to_string(address) + " size " + std::to_string(size) + " until " +
                          std::to_string(termination));
  std::memcpy(buffer, "72.6", 4);
  library.count = 4;
}
int LibIbtmo(int, int code) {
  library.calls.push_back("TMO " + std::to_string(code));
  return 0;
}
int LibStatus() {
  return library.status;
}
int LibError() {
  return library.error;
}
long LibLongCount() {
  return library.count;
}
int LibCount() {
  return static_cast<int>(library.count);
}

using Functions = std::map<std::string, void*>;

template <class F>
void* Address(F* function) {
  return reinterpret_cast<void*>(function);
}

Functions AllFunctions() {
  return {{"SendIFC", Address(LibSendIFC)},   {"FindLstn", Address(LibFindLstn)},
          {"SetRWLS", Address(LibSetRWLS)},   {"EnableLocal", Address(LibEnableLocal)},
          {"Send", Address(LibSend)},         {"Receive", Address(LibReceive)},
          {"ibtmo", Address(LibIbtmo)},       {"ThreadIbsta", Address(LibStatus)},
          {"ThreadIberr", Address(LibError)}, {"ThreadIbcntl", Address(LibLongCount)}};
}

NativeGpib::Resolver Resolving(Functions functions) {
  return [functions = std::move(functions)](const char* name) {
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
  };
}

class NativeGpibTest : public testing::Test {
 protected:
  NativeGpibTest() { library = FakeLibrary(); }
  GpibStatusCells cells_;
};

constexpr std::array<std::int16_t, 3> kAddresses = {0, 18, gpib::kNoAddr};

TEST_F(NativeGpibTest, HandsEveryCallToTheLibraryUnchanged) {
  NativeGpib driver(Resolving(AllFunctions()));
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
  older["Ibsta"] = Address(LibStatus), older["Iberr"] = Address(LibError), older["Ibcnt"] = Address(LibCount);
  for (const Functions& functions : {AllFunctions(), older}) {
    NativeGpib driver(Resolving(functions));
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

TEST_F(NativeGpibTest, WithoutAWholeLibraryEveryCallFailsWithEdvr) {
  Functions functions = AllFunctions();
  functions.erase("EnableLocal");
  for (const auto& resolver : {Resolving(functions), Resolving({})}) {
    NativeGpib driver(resolver);
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
  }
  EXPECT_TRUE(library.calls.empty());
}

}  // namespace
}  // namespace hylden
