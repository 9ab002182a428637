#include "support/FailingDriver.h"

#include <algorithm>
#include <utility>

namespace hylden {

namespace {
const std::map<int, double> kSecondsOfLimit = {{8, 0.03}, {9, 0.1}, {10, 0.3}, {11, 1}, {12, 3}, {13, 10}};
}  // namespace

int FailingDriver::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  const int result = inner_->RegisterGpibGlobalsForThread(cells);
  if (result == 0) cells_ = &cells;
  return result;
}

int FailingDriver::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return inner_->UnregisterGpibGlobalsForThread();
}

bool FailingDriver::Fails(const std::string& line) {
  const auto error = FailureOf(line);
  if (!error) return false;
  const bool timedOut = *error == gpib::kEabo;
  if (timedOut) frozenSeconds_ += kSecondsOfLimit.at(timeLimit_);
  SetFailure(cells_, *error, timedOut ? gpib::kTimo : 0);
  return true;
}

void FailingDriver::SendIFC(int board) {
  if (!Fails("IFC")) inner_->SendIFC(board);
}

void FailingDriver::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  if (!Fails(AddressLine("FIND", addresses))) inner_->FindLstn(board, addresses, results);
}

void FailingDriver::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  if (!Fails(AddressLine("REMOTE", addresses))) inner_->SetRWLS(board, addresses);
}

void FailingDriver::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  if (!Fails(AddressLine("LOCAL", addresses))) inner_->EnableLocal(board, addresses);
}

void FailingDriver::ibtmo(int board, int code) {
  timeLimit_ = code;
  if (!Fails("TMO " + std::to_string(code))) inner_->ibtmo(board, code);
}

void FailingDriver::Send(int board, int address, std::string_view bytes, int eotMode) {
  sent_[address].emplace_back(bytes);
  std::string& tail = tails_[address];
  tail += bytes;
  if (!Fails("> " + std::to_string(address) + " " + Escaped(bytes)))
    return inner_->Send(board, address, std::exchange(tail, {}), eotMode);
  const bool hangs = cells_ && (cells_->status & gpib::kTimo) != 0;
  while (!tail.empty() && (tail.back() == '\r' || tail.back() == '\n')) tail.pop_back();
  hangs && !tail.empty() ? tail.pop_back() : tail.clear();
}

void FailingDriver::Receive(int board, int address, std::span<char> buffer, int termination) {
  if (Fails("< " + std::to_string(address))) return;
  inner_->Receive(board, address, buffer, termination);
  if (timeLimit_ == gpib::kT30ms) return;
  const auto garbled = garbled_.find(++reads_);
  if (garbled == garbled_.end()) return;
  if (!garbled->second) return SetFailure(cells_, gpib::kEabo, gpib::kTimo);
  const std::size_t count = std::min(garbled->second->size(), buffer.size());
  std::copy_n(garbled->second->begin(), count, buffer.begin());
  SetSuccess(cells_, count, gpib::kEnd);
}

}  // namespace hylden
