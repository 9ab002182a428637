#include "support/ScriptedBus.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace hylden {

void ScriptedBus::Answers(int address, const std::vector<std::string>& list) {
  for (const std::string& bytes : list) Answer(address, bytes);
}

int ScriptedBus::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  registrations.emplace_back("REGISTER");
  int result = 0;
  if (!registrationResults.empty()) {
    result = registrationResults.front();
    registrationResults.pop_front();
  }
  if (result == 0) cells_ = &cells;
  return result;
}

int ScriptedBus::UnregisterGpibGlobalsForThread() {
  registrations.emplace_back("UNREGISTER");
  cells_ = nullptr;
  return 0;
}

void ScriptedBus::Plain(const std::string& line) {
  if (const auto error = FailureOf(line)) {
    SetFailure(cells_, *error);
  } else {
    SetSuccess(cells_, 0);
  }
  transcript.Add(line, cells_);
}

void ScriptedBus::SendIFC(int board) {
  EXPECT_EQ(board, 0);
  Plain("IFC");
}

void ScriptedBus::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  EXPECT_EQ(board, 0);
  const std::string line = AddressLine("FIND", addresses);
  std::size_t found = 0;
  if (const auto error = FailureOf(line)) {
    SetFailure(cells_, *error);
  } else {
    for (const std::int16_t address : ListedAddresses(addresses)) {
      if (!absent.contains(address) && found < results.size()) results[found++] = address;
    }
    SetSuccess(cells_, found);
  }
  transcript.Add(line, cells_);
}

void ScriptedBus::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  EXPECT_EQ(board, 0);
  Plain(AddressLine("REMOTE", addresses));
}

void ScriptedBus::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  EXPECT_EQ(board, 0);
  Plain(AddressLine("LOCAL", addresses));
}

void ScriptedBus::Send(int board, int address, std::string_view bytes, int eotMode) {
  EXPECT_EQ(board, 0);
  EXPECT_EQ(eotMode, gpib::kDabEnd) << "EOI belongs on the last byte";
  const std::string line = "> " + std::to_string(address) + " " + Escaped(bytes);
  if (const auto error = FailureOf(line)) {
    SetFailure(cells_, *error, *error == gpib::kEabo ? gpib::kTimo : 0);
  } else if (absent.contains(address)) {
    SetFailure(cells_, gpib::kEnol);
  } else {
    lastCommand_[address] = std::string(bytes);
    SetSuccess(cells_, bytes.size());
  }
  transcript.Add(line, cells_);
}

std::optional<std::string> ScriptedBus::NextAnswer(int address) {
  if (absent.contains(address)) return std::nullopt;
  if (!rest_[address].empty()) return std::exchange(rest_[address], {});
  if (timeLimit_ == gpib::kT30ms) return std::nullopt;
  if (auto& queue = answers_[address]; !queue.empty()) {
    std::optional<std::string> answer = std::move(queue.front());
    queue.pop_front();
    return answer;
  }
  return fallback ? fallback(address, lastCommand_[address]) : std::nullopt;
}

void ScriptedBus::Receive(int board, int address, std::span<char> buffer, int termination) {
  EXPECT_EQ(board, 0);
  const std::string head = "< " + std::to_string(address);
  if (const auto error = FailureOf(head)) {
    SetFailure(cells_, *error, *error == gpib::kEabo ? gpib::kTimo : 0);
    return transcript.Add(head, cells_);
  }
  const std::optional<std::string> answer = NextAnswer(address);
  if (!answer) {
    SetFailure(cells_, gpib::kEabo, gpib::kTimo);
    return transcript.Add(head, cells_);
  }
  std::size_t length = answer->size();
  bool ended = true;
  if (termination != gpib::kStopEnd) length = std::min(answer->find(static_cast<char>(termination)), length - 1) + 1;
  if (length > buffer.size()) {
    length = buffer.size();
    ended = false;
  }
  std::copy_n(answer->begin(), length, buffer.begin());
  rest_[address] = answer->substr(length);
  SetSuccess(cells_, length, ended ? gpib::kEnd : 0);
  transcript.Add(head + " " + Escaped(answer->substr(0, length)), cells_);
}

void ScriptedBus::ibtmo(int board, int code) {
  EXPECT_EQ(board, 0);
  timeLimit_ = code;
  Plain("TMO " + std::to_string(code));
}

}  // namespace hylden
