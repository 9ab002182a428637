#include "platform/native/NativeGpib.h"

#include <type_traits>
#include <utility>
#include <vector>

namespace hylden {

namespace {

std::vector<std::uint16_t> BusAddresses(std::span<const std::int16_t> addresses) {
  std::vector<std::uint16_t> list;
  for (const std::int16_t address : addresses) list.push_back(static_cast<std::uint16_t>(address));
  // The library reads up to the terminator.
  if (list.empty() || addresses.back() != gpib::kNoAddr) list.push_back(static_cast<std::uint16_t>(gpib::kNoAddr));
  return list;
}

}  // namespace

NativeGpib::NativeGpib(GpibLibrary library, int board) : library_(std::move(library)), board_(board) {
  if (library_.Find) Resolve();
}

/// Finds the functions; the first one that is missing is told.
void NativeGpib::Resolve() {
  const auto find = [this](auto*& function, const char* name, const char* otherName = nullptr) {
    void* found = library_.Find(name);
    if (!found && otherName) found = library_.Find(otherName);
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(found);
    return found != nullptr;
  };
  const auto want = [&](auto*& function, const char* name, const char* otherName = nullptr) {
    if (!find(function, name, otherName) && library_.Fault.empty())
      library_.Fault = "The GPIB library " + library_.Name + " has no function " + name + ".";
  };
  Calls& c = calls_;
  want(c.SendIFC, "SendIFC");
  want(c.FindLstn, "FindLstn");
  want(c.SetRWLS, "SetRWLS");
  want(c.EnableLocal, "EnableLocal");
  want(c.Send, "Send");
  want(c.Receive, "Receive");
  want(c.ibtmo, "ibtmo");
  find(c.Version, "ibvers");
  if (find(c.Register, "RegisterGpibGlobalsForThread") && find(c.Unregister, "UnregisterGpibGlobalsForThread")) return;
  want(c.Status, "ThreadIbsta", "Ibsta");
  want(c.Error, "ThreadIberr", "Iberr");
  if (!find(c.LongCount, "ThreadIbcntl")) want(c.Count, "ThreadIbcnt", "Ibcnt");
}

int NativeGpib::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  cells_ = &cells;
  if (!library_.Fault.empty() || !calls_.Unregister) return 0;
  return calls_.Register(&cells.status, &cells.error, &cells.count, &cells.longCount);
}

int NativeGpib::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return library_.Fault.empty() && calls_.Unregister ? calls_.Unregister() : 0;
}

template <class Call>
void NativeGpib::Run(Call call) {
  if (library_.Fault.empty()) {
    const ErrorCapture::Scope capturing(chatter_);
    call();
    if (cells_ && !calls_.Unregister) ReadStatus();
  } else if (cells_) {
    *cells_ = {gpib::kErr, gpib::kEdvr, 0, 0};
  }
}

void NativeGpib::ReadStatus() {
  cells_->status = calls_.Status();
  cells_->error = calls_.Error();
  cells_->longCount = calls_.LongCount ? static_cast<std::int32_t>(calls_.LongCount()) : calls_.Count();
  cells_->count = cells_->longCount;
}

std::string NativeGpib::Advice() const {
  if (!library_.Fault.empty() || !library_.IsLinuxGpib || !cells_) return library_.Fault;
  const bool isBoardLost =
      (cells_->status & gpib::kErr) != 0 && (cells_->error == gpib::kEdvr || cells_->error == gpib::kEneb);
  return isBoardLost ? BoardAdvice("/dev/gpib" + std::to_string(board_), {"/etc/gpib.conf", "/usr/local/etc/gpib.conf"})
                     : std::string();
}

std::string NativeGpib::Way(int) const {
  if (!library_.Fault.empty()) return library_.Fault;
  char* version = nullptr;
  if (calls_.Version) calls_.Version(&version);
  return "GPIB library " + library_.Name + ", board " + std::to_string(board_) +
         (version ? ", version " + std::string(version) : "");
}

void NativeGpib::SendIFC(int) {
  Run([&] { calls_.SendIFC(board_); });
}

void NativeGpib::FindLstn(int, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  Run([&] {
    std::vector<std::uint16_t> found(results.size(), static_cast<std::uint16_t>(gpib::kNoAddr));
    calls_.FindLstn(board_, BusAddresses(addresses).data(), found.data(), static_cast<std::ptrdiff_t>(found.size()));
    for (std::size_t i = 0; i < found.size(); ++i) results[i] = static_cast<std::int16_t>(found[i]);
  });
}

void NativeGpib::SetRWLS(int, std::span<const std::int16_t> addresses) {
  Run([&] { calls_.SetRWLS(board_, BusAddresses(addresses).data()); });
}

void NativeGpib::EnableLocal(int, std::span<const std::int16_t> addresses) {
  Run([&] { calls_.EnableLocal(board_, BusAddresses(addresses).data()); });
}

void NativeGpib::Send(int, int address, std::string_view bytes, int eotMode) {
  Run([&] {
    const int mode = eotMode == gpib::kDabEnd ? library_.EoiMode() : eotMode;
    calls_.Send(board_, static_cast<std::uint16_t>(address), bytes.data(), static_cast<std::ptrdiff_t>(bytes.size()),
                mode);
  });
}

void NativeGpib::Receive(int, int address, std::span<char> buffer, int termination) {
  Run([&] {
    calls_.Receive(board_, static_cast<std::uint16_t>(address), buffer.data(),
                   static_cast<std::ptrdiff_t>(buffer.size()), termination);
  });
}

void NativeGpib::ibtmo(int, int code) {
  Run([&] { calls_.ibtmo(board_, code); });
}

}  // namespace hylden
