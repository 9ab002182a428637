#include "support/DriverWrappers.h"

#include <algorithm>

namespace hylden {

namespace {
const std::map<int, double> kSecondsOfLimit = {{8, 0.03}, {9, 0.1}, {10, 0.3}, {11, 1}, {12, 3}, {13, 10}};
}  // namespace

int DriverWrapper::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  const int result = inner_.RegisterGpibGlobalsForThread(cells);
  if (result == 0) cells_ = &cells;
  return result;
}

int DriverWrapper::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return inner_.UnregisterGpibGlobalsForThread();
}

void DriverWrapper::SendIFC(int board) {
  Around("IFC", [&] { inner_.SendIFC(board); });
}

void DriverWrapper::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  Around(AddressLine("FIND", addresses), [&] { inner_.FindLstn(board, addresses, results); });
}

void DriverWrapper::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  Around(AddressLine("REMOTE", addresses), [&] { inner_.SetRWLS(board, addresses); });
}

void DriverWrapper::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  Around(AddressLine("LOCAL", addresses), [&] { inner_.EnableLocal(board, addresses); });
}

void DriverWrapper::Send(int board, int address, std::string_view bytes, int eotMode) {
  Around("> " + std::to_string(address) + " " + Escaped(bytes), [&] { inner_.Send(board, address, bytes, eotMode); });
}

void DriverWrapper::Receive(int board, int address, std::span<char> buffer, int termination) {
  AroundReceive(address, buffer, [&] { inner_.Receive(board, address, buffer, termination); });
}

void DriverWrapper::ibtmo(int board, int code) {
  Around("TMO " + std::to_string(code), [&] { inner_.ibtmo(board, code); });
}

void FailingDriver::ibtmo(int board, int code) {
  timeLimit_ = code;
  DriverWrapper::ibtmo(board, code);
}

void FailingDriver::Send(int board, int address, std::string_view bytes, int eotMode) {
  sent_[address].emplace_back(bytes);
  DriverWrapper::Send(board, address, bytes, eotMode);
}

void FailingDriver::Fail(int error) {
  const bool timedOut = error == gpib::kEabo;
  if (timedOut) frozenSeconds_ += kSecondsOfLimit.at(timeLimit_);
  SetFailure(cells_, error, timedOut ? gpib::kTimo : 0);
}

void FailingDriver::Around(const std::string& line, const std::function<void()>& call) {
  if (const auto error = FailureOf(line)) return Fail(*error);
  call();
}

void FailingDriver::AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) {
  if (const auto error = FailureOf("< " + std::to_string(address))) return Fail(*error);
  call();
  if (timeLimit_ == gpib::kT30ms) return;
  const auto garbled = garbled_.find(++reads_);
  if (garbled == garbled_.end()) return;
  if (!garbled->second) return SetFailure(cells_, gpib::kEabo, gpib::kTimo);
  const std::size_t count = std::min(garbled->second->size(), buffer.size());
  std::copy_n(garbled->second->begin(), count, buffer.begin());
  SetSuccess(cells_, count, gpib::kEnd);
}

}  // namespace hylden
