#pragma once

#include <string>

namespace hylden {

/// A path of four or more parts as its first part, "\...\" and its last part; a shorter path unchanged. "\" and "/"
/// separate parts; the separator that the path used is kept.
std::string ShortenPath(const std::string& path);

/// The last part of a path.
std::string FileNameOnly(const std::string& path);

/// Whether two texts of a box stand for the same value: "80" and "80.0" do.
bool SameEntry(const std::string& a, const std::string& b);

}  // namespace hylden
