#pragma once

#include <string>
#include <utility>

#include "platform/GpibDriver.h"

namespace hylden {

/// A way to nowhere: every call fails with ERR and EDVR, and Advice says why.
class AbsentGpib : public GpibDriver {
 public:
  explicit AbsentGpib(std::string reason) : reason_(std::move(reason)) {}

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override {
    cells_ = &cells;
    return 0;
  }
  int UnregisterGpibGlobalsForThread() override {
    cells_ = nullptr;
    return 0;
  }
  void SendIFC(int) override { Fail(); }
  void FindLstn(int, std::span<const std::int16_t>, std::span<std::int16_t>) override { Fail(); }
  void SetRWLS(int, std::span<const std::int16_t>) override { Fail(); }
  void EnableLocal(int, std::span<const std::int16_t>) override { Fail(); }
  void Send(int, int, std::string_view, int) override { Fail(); }
  void Receive(int, int, std::span<char>, int) override { Fail(); }
  void ibtmo(int, int) override { Fail(); }
  std::string Advice() const override { return reason_; }
  std::string Way(int) const override { return reason_; }

 private:
  void Fail() {
    if (cells_) *cells_ = {gpib::kErr, gpib::kEdvr, 0, 0};
  }

  const std::string reason_;
  GpibStatusCells* cells_ = nullptr;
};

}  // namespace hylden
