#include "platform/native/NativeGpib.h"

#include <dlfcn.h>

#include <vector>

namespace hylden {

namespace {

/// The installed library; it stays loaded, since drivers seldom bear being unloaded.
void* OpenLibrary() {
  for (const char* name : {"libgpib.so.0", "libgpib.so", "libni4882.so.1", "libni4882.so", "libgpibapi.so"}) {
    if (void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL)) return library;
  }
  return nullptr;
}

void* MachineFunction(const char* name) {
  static void* const library = OpenLibrary();
  return library ? dlsym(library, name) : nullptr;
}

/// Finds a function under the first of its names that the library knows.
template <class Function>
bool Find(Function*& function, const NativeGpib::Resolver& resolve, const char* name, const char* otherName = nullptr) {
  void* found = resolve(name);
  if (!found && otherName) found = resolve(otherName);
  function = reinterpret_cast<Function*>(found);
  return found != nullptr;
}

std::vector<std::uint16_t> BusAddresses(std::span<const std::int16_t> addresses) {
  std::vector<std::uint16_t> list;
  for (const std::int16_t address : addresses) list.push_back(static_cast<std::uint16_t>(address));
  // The library reads up to the terminator.
  if (list.empty() || addresses.back() != gpib::kNoAddr) list.push_back(static_cast<std::uint16_t>(gpib::kNoAddr));
  return list;
}

}  // namespace

NativeGpib::NativeGpib() : NativeGpib(MachineFunction) {}

NativeGpib::NativeGpib(const Resolver& resolve) {
  Library& l = library_;
  const bool counts = Find(l.LongCount, resolve, "ThreadIbcntl") || Find(l.Count, resolve, "ThreadIbcnt", "Ibcnt");
  available_ = counts && Find(l.SendIFC, resolve, "SendIFC") && Find(l.FindLstn, resolve, "FindLstn") &&
               Find(l.SetRWLS, resolve, "SetRWLS") && Find(l.EnableLocal, resolve, "EnableLocal") &&
               Find(l.Send, resolve, "Send") && Find(l.Receive, resolve, "Receive") &&
               Find(l.ibtmo, resolve, "ibtmo") && Find(l.Status, resolve, "ThreadIbsta", "Ibsta") &&
               Find(l.Error, resolve, "ThreadIberr", "Iberr");
}

int NativeGpib::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  cells_ = &cells;
  return 0;
}

int NativeGpib::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return 0;
}

template <class Call>
void NativeGpib::Run(Call call) {
  if (available_) {
    call();
    if (cells_) ReadStatus();
  } else if (cells_) {
    *cells_ = {gpib::kErr, gpib::kEdvr, 0, 0};
  }
}

void NativeGpib::ReadStatus() {
  cells_->status = library_.Status();
  cells_->error = library_.Error();
  cells_->longCount = library_.LongCount ? static_cast<std::int32_t>(library_.LongCount()) : library_.Count();
  cells_->count = cells_->longCount;
}

void NativeGpib::SendIFC(int board) {
  Run([&] { library_.SendIFC(board); });
}

void NativeGpib::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  Run([&] {
    std::vector<std::uint16_t> found(results.size(), static_cast<std::uint16_t>(gpib::kNoAddr));
    library_.FindLstn(board, BusAddresses(addresses).data(), found.data(), static_cast<int>(found.size()));
    for (std::size_t i = 0; i < found.size(); ++i) results[i] = static_cast<std::int16_t>(found[i]);
  });
}

void NativeGpib::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  Run([&] { library_.SetRWLS(board, BusAddresses(addresses).data()); });
}

void NativeGpib::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  Run([&] { library_.EnableLocal(board, BusAddresses(addresses).data()); });
}

void NativeGpib::Send(int board, int address, std::string_view bytes, int eotMode) {
  Run([&] {
    library_.Send(board, static_cast<std::uint16_t>(address), bytes.data(), static_cast<long>(bytes.size()), eotMode);
  });
}

void NativeGpib::Receive(int board, int address, std::span<char> buffer, int termination) {
  Run([&] {
    library_.Receive(board, static_cast<std::uint16_t>(address), buffer.data(), static_cast<long>(buffer.size()),
                     termination);
  });
}

void NativeGpib::ibtmo(int board, int code) {
  Run([&] { library_.ibtmo(board, code); });
}

}  // namespace hylden
