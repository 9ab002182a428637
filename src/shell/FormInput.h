#pragma once

#include <algorithm>
#include <string>

namespace hylden {

/// A path of four or more parts as its first part, "\...\" and its last part; a shorter path unchanged. "\" and "/"
/// separate parts; the separator that the path used is kept.
std::string ShortenPath(const std::string& path);

/// The last part of a path.
std::string FileNameOnly(const std::string& path);

constexpr double MaxOf(double a, double b) {
  return std::max(a, b);
}
constexpr double MinOf(double a, double b) {
  return std::min(a, b);
}

}  // namespace hylden
