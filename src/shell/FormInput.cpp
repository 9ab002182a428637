#include "shell/FormInput.h"

#include <algorithm>

#include "text/Numbers.h"

namespace hylden {
namespace {

constexpr const char* kSeparators = "\\/";

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

}  // namespace

std::string ShortenPath(const std::string& path) {
  if (std::count_if(path.begin(), path.end(), IsSeparator) < 3) return path;
  const std::size_t first = path.find_first_of(kSeparators);
  const char separator = path[first];
  return path.substr(0, first) + separator + "..." + separator + FileNameOnly(path);
}

std::string FileNameOnly(const std::string& path) {
  const std::size_t last = path.find_last_of(kSeparators);
  return last == std::string::npos ? path : path.substr(last + 1);
}

bool SameEntry(const std::string& a, const std::string& b) {
  return a == b || (IsNumeric(a) && IsNumeric(b) && ToDouble(a) == ToDouble(b));
}

}  // namespace hylden
