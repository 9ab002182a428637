#pragma once

#include <cstddef>
#include <string>

#include "platform/GpibDriver.h"
#include "platform/native/ErrorCapture.h"
#include "platform/native/GpibLibrary.h"

namespace hylden {

/// The machine's own bus driver: a shared library. Without a whole one every call ends with ERR and EDVR, and Advice
/// says what is missing.
class NativeGpib : public GpibDriver {
 public:
  /// @param board  the board of the machine that stands for the program's board 0
  explicit NativeGpib(GpibLibrary library = OpenGpibLibrary(), int board = 0);

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override;
  std::string Way(int address) const override;
  std::string TakeChatter() override { return chatter_.Take(); }

 private:
  // The calls as the libraries export them: an address is 16 bits wide, a count has the width of a pointer (where a
  // library takes less, it looks at the low half).
  struct Calls {
    void (*SendIFC)(int) = nullptr;
    void (*FindLstn)(int, const std::uint16_t*, std::uint16_t*, std::ptrdiff_t) = nullptr;
    void (*SetRWLS)(int, const std::uint16_t*) = nullptr;
    void (*EnableLocal)(int, const std::uint16_t*) = nullptr;
    void (*Send)(int, std::uint16_t, const void*, std::ptrdiff_t, int) = nullptr;
    void (*Receive)(int, std::uint16_t, void*, std::ptrdiff_t, int) = nullptr;
    int (*ibtmo)(int, int) = nullptr;
    // A library has the first two, or the others: status cells that it fills by itself, or functions that tell.
    int (*Register)(std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*) = nullptr;
    int (*Unregister)() = nullptr;
    int (*Status)() = nullptr;
    int (*Error)() = nullptr;
    long (*LongCount)() = nullptr;
    int (*Count)() = nullptr;
    void (*Version)(char**) = nullptr;  ///< Linux-GPIB's alone
  };

  void Resolve();
  template <class Call>
  void Run(Call call);
  void ReadStatus();

  GpibLibrary library_;
  const int board_;
  Calls calls_;
  ErrorCapture chatter_;
  GpibStatusCells* cells_ = nullptr;
};

}  // namespace hylden
