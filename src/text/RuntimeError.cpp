#include "text/RuntimeError.h"

namespace hylden {
namespace {

const char* CustomaryDescription(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::InvalidProcedureCall:
      return "Invalid procedure call or argument";
    case ErrorNumber::Overflow:
      return "Overflow";
    case ErrorNumber::TypeMismatch:
      return "Type mismatch";
    case ErrorNumber::BadFileName:
      return "Bad file name or number";
    case ErrorNumber::FileNotFound:
      return "File not found";
    case ErrorNumber::DeviceIoError:
      return "Device I/O error";
    case ErrorNumber::DiskFull:
      return "Disk full";
    case ErrorNumber::InputPastEndOfFile:
      return "Input past end of file";
    case ErrorNumber::PermissionDenied:
      return "Permission denied";
    case ErrorNumber::PathFileAccessError:
      return "Path/File access error";
    case ErrorNumber::PathNotFound:
      return "Path not found";
  }
  return "Application-defined or object-defined error";
}

}  // namespace

RuntimeError::RuntimeError(ErrorNumber number)
    : std::runtime_error(CustomaryDescription(number)), number_(static_cast<int>(number)) {}

RuntimeError::RuntimeError(int number, const std::string& description)
    : std::runtime_error(description), number_(number) {}

}  // namespace hylden
