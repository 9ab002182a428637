#include "platform/BusRouter.h"

#include <algorithm>
#include <utility>

namespace hylden {

BusRouter::BusRouter(GpibDriver& others, std::map<int, GpibDriver*> ways)
    : others_(others), ways_(std::move(ways)), drivers_{&others}, last_(&others) {
  for (const auto& [address, driver] : ways_)
    if (std::find(drivers_.begin(), drivers_.end(), driver) == drivers_.end()) drivers_.push_back(driver);
}

GpibDriver& BusRouter::To(int address) const {
  const auto way = ways_.find(address);
  return way == ways_.end() ? others_ : *way->second;
}

int BusRouter::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  cells_ = &cells;
  for (GpibDriver* const driver : drivers_)
    if (driver != &others_) driver->RegisterGpibGlobalsForThread(cells);
  return others_.RegisterGpibGlobalsForThread(cells);
}

int BusRouter::UnregisterGpibGlobalsForThread() {
  for (GpibDriver* const driver : drivers_)
    if (driver != &others_) driver->UnregisterGpibGlobalsForThread();
  cells_ = nullptr;
  return others_.UnregisterGpibGlobalsForThread();
}

void BusRouter::SendIFC(int) {
  for (const GpibDriver* const driver : drivers_) clears_[driver] = Clear::Due;
  if (cells_) *cells_ = {gpib::kCmpl | gpib::kCic, 0, 0, 0};
}

bool BusRouter::IsReady(GpibDriver& driver, int board, bool again) {
  last_ = &driver;
  const auto clear = clears_.find(&driver);
  if (clear == clears_.end() || clear->second == Clear::Done) return true;
  if (clear->second == Clear::Failed && !again) return true;  // it tells by itself that it can't
  driver.SendIFC(board);
  clear->second = Failed() ? Clear::Failed : Clear::Done;
  return !Failed();
}

template <class Call>
void BusRouter::Spread(std::span<const std::int16_t> addresses, Call call) {
  std::vector<std::pair<GpibDriver*, std::vector<std::int16_t>>> parts;
  const auto listEnd = std::find(addresses.begin(), addresses.end(), gpib::kNoAddr);
  // Before others, address 0 is the board itself.
  const bool hasBoard = listEnd - addresses.begin() > 1 && addresses.front() == 0;
  for (auto address = addresses.begin() + (hasBoard ? 1 : 0); address != listEnd; ++address) {
    GpibDriver* const driver = &To(*address);
    auto part = std::find_if(parts.begin(), parts.end(), [&](const auto& p) { return p.first == driver; });
    if (part == parts.end()) {
      part = parts.insert(part, {driver, {}});
      if (hasBoard && driver == &others_) part->second.push_back(0);
    }
    part->second.push_back(*address);
  }
  for (auto& [driver, list] : parts) {
    list.push_back(gpib::kNoAddr);
    if (!call(*driver, list)) return;
  }
}

/// Of several ways, as when all addresses are looked through, those that are not there are passed over.
void BusRouter::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  std::size_t count = 0;
  bool isFound = false;
  GpibStatusCells status;
  Spread(addresses, [&](GpibDriver& driver, const std::vector<std::int16_t>& list) {
    std::vector<std::int16_t> found(results.size() - count, gpib::kNoAddr);
    if (IsReady(driver, board, true)) driver.FindLstn(board, list, found);
    if (!cells_ || Failed()) return true;
    for (std::size_t i = 0; i < found.size() && found[i] != gpib::kNoAddr; ++i) results[count++] = found[i];
    isFound = true;
    status = *cells_;
    return true;
  });
  if (count < results.size()) results[count] = gpib::kNoAddr;
  if (!isFound) return;
  *cells_ = status;
  cells_->count = cells_->longCount = static_cast<std::int32_t>(count);
}

void BusRouter::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  Spread(addresses, [&](GpibDriver& driver, const std::vector<std::int16_t>& list) {
    if (!IsReady(driver, board)) return false;
    driver.SetRWLS(board, list);
    return !Failed();
  });
}

void BusRouter::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  Spread(addresses, [&](GpibDriver& driver, const std::vector<std::int16_t>& list) {
    if (!IsReady(driver, board)) return false;
    driver.EnableLocal(board, list);
    return !Failed();
  });
}

void BusRouter::Send(int board, int address, std::string_view bytes, int eotMode) {
  GpibDriver& driver = To(address);
  if (IsReady(driver, board)) driver.Send(board, address, bytes, eotMode);
}

void BusRouter::Receive(int board, int address, std::span<char> buffer, int termination) {
  GpibDriver& driver = To(address);
  if (IsReady(driver, board)) driver.Receive(board, address, buffer, termination);
}

/// Fails only where no way takes it: one that is not there may be one that nobody needs.
void BusRouter::ibtmo(int board, int code) {
  GpibStatusCells taken;
  bool isTaken = false;
  for (GpibDriver* const driver : drivers_) {
    driver->ibtmo(board, code);
    if (!cells_ || Failed()) continue;
    taken = *cells_;
    isTaken = true;
  }
  if (isTaken) *cells_ = taken;
}

std::string BusRouter::TakeChatter() {
  std::string chatter;
  for (GpibDriver* const driver : drivers_) chatter += driver->TakeChatter();
  return chatter;
}

}  // namespace hylden
