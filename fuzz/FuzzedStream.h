#pragma once

#include <algorithm>

#include "platform/native/ByteStream.h"

namespace hylden {

/// A connection whose other end says the input, in pieces, and is then gone.
class FuzzedStream : public ByteStream {
 public:
  explicit FuzzedStream(std::string_view says) : says_(says) {}

  Outcome Open(Deadline) override { return IsOpen() ? Outcome::Done : Outcome::Lost; }
  bool IsOpen() const override { return !says_.empty(); }
  Outcome Write(std::string_view, Deadline) override { return IsOpen() ? Outcome::Done : Outcome::Lost; }
  Outcome Read(std::string& bytes, std::size_t most, Deadline) override {
    if (says_.empty()) return Outcome::Lost;
    const std::size_t count =
        std::min({most, says_.size(), std::size_t(1) + static_cast<unsigned char>(says_[0]) % 40});
    bytes += says_.substr(0, count);
    says_.remove_prefix(count);
    return Outcome::Done;
  }
  std::string Fault() const override { return "gone"; }
  std::string Name() const override { return "fuzzed"; }

 private:
  std::string_view says_;
};

/// Works with a driver until the other end is gone, or seems to say the same for ever.
template <class Driver>
void DriveFuzzed(Driver&& driver) {
  constexpr int kRounds = 20, kAddress = 5;
  GpibStatusCells cells;
  driver.RegisterGpibGlobalsForThread(cells);
  driver.ibtmo(0, gpib::kT30ms);
  driver.SendIFC(0);
  for (int round = 0; round < kRounds; ++round) {
    driver.Send(0, kAddress, "FREQ 1\n", gpib::kDabEnd);
    for (const int termination : {gpib::kStopEnd, 10, 13}) {
      std::array<char, 64> answer;
      driver.Receive(0, kAddress, answer, termination);
      if (cells.longCount < 0 || cells.longCount > 64) std::abort();
    }
    (void)driver.Advice();
    (void)driver.Way(kAddress);
    if ((cells.status & gpib::kErr) != 0 && cells.error == gpib::kEdvr) return;
  }
}

}  // namespace hylden
