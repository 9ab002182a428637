#pragma once

#include <stdexcept>
#include <string>

namespace hylden {

/// The numbered failures that the program reports to its operator.
enum class ErrorNumber : int {
  InvalidProcedureCall = 5,
  Overflow = 6,
  TypeMismatch = 13,
  BadFileName = 52,
  FileNotFound = 53,
  DeviceIoError = 57,
  DiskFull = 61,
  InputPastEndOfFile = 62,
  PermissionDenied = 70,
  PathFileAccessError = 75,
  PathNotFound = 76,
};

/// A failure with the number and the description that an "Error # ..." report shows.
class RuntimeError : public std::runtime_error {
 public:
  /// The customary description of the number is used.
  explicit RuntimeError(ErrorNumber number);
  RuntimeError(int number, const std::string& description);

  int Number() const { return number_; }
  std::string Description() const { return what(); }

 private:
  int number_;
};

}  // namespace hylden
