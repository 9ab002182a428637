#pragma once

#include <cstddef>
#include <string>

namespace hylden {

/// What somebody else's code writes to standard error while it works, kept from the terminal; of more than 64 KB the
/// latest. Only where the system can keep it in memory; elsewhere it goes where it always went.
class ErrorCapture {
 public:
  static constexpr std::size_t kMost = std::size_t{64} * 1024;

  ErrorCapture();
  ~ErrorCapture();
  ErrorCapture(const ErrorCapture&) = delete;
  ErrorCapture& operator=(const ErrorCapture&) = delete;

  /// Standard error goes into the capture as long as it lives. One at a time in the whole program: another one beside
  /// it captures nothing.
  class Scope {
   public:
    explicit Scope(ErrorCapture& capture);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    ErrorCapture& capture_;
    bool captures_ = false;  ///< false where standard error was left alone
  };

  /// The program has its standard error again, also while a scope lives whose code does not return. Any thread.
  static void PutBack();

  /// What was written since this was last asked.
  std::string Take();

 private:
  void Collect();

  int file_ = -1;
  std::string text_;
};

}  // namespace hylden
