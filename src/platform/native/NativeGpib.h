#pragma once

#include <functional>

#include "platform/GpibDriver.h"

namespace hylden {

/// The machine's own bus driver: the shared library of linux-gpib or of NI-488.2, whichever is installed, found when
/// the object is built. Without one every call ends with ERR and EDVR.
/// The library keeps its status per thread by itself, so registration only remembers the cells.
class NativeGpib : public GpibDriver {
 public:
  /// The address of a library function; null when there is none.
  using Resolver = std::function<void*(const char* name)>;

  NativeGpib();
  explicit NativeGpib(const Resolver& resolve);

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;

 private:
  // The calls as both libraries export them: an address is 16 bits wide, a count has the width of a pointer.
  struct Library {
    void (*SendIFC)(int) = nullptr;
    void (*FindLstn)(int, const std::uint16_t*, std::uint16_t*, int) = nullptr;
    void (*SetRWLS)(int, const std::uint16_t*) = nullptr;
    void (*EnableLocal)(int, const std::uint16_t*) = nullptr;
    void (*Send)(int, std::uint16_t, const void*, long, int) = nullptr;
    void (*Receive)(int, std::uint16_t, void*, long, int) = nullptr;
    int (*ibtmo)(int, int) = nullptr;
    int (*Status)() = nullptr;
    int (*Error)() = nullptr;
    long (*LongCount)() = nullptr;
    int (*Count)() = nullptr;
  };

  template <class Call>
  void Run(Call call);
  void ReadStatus();

  Library library_;
  bool available_ = false;
  GpibStatusCells* cells_ = nullptr;
};

}  // namespace hylden
