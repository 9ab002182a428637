#include "support/DriverWrappers.h"

#include <algorithm>

namespace hylden {

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

void FailingDriver::Around(const std::string& line, const std::function<void()>& call) {
  if (const auto error = FailureOf(line)) return SetFailure(cells_, *error);
  call();
}

void FailingDriver::AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) {
  if (const auto error = FailureOf("< " + std::to_string(address))) {
    return SetFailure(cells_, *error, *error == gpib::kEabo ? gpib::kTimo : 0);
  }
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
