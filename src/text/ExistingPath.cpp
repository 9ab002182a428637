#include "text/ExistingPath.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "text/Case.h"

namespace hylden {
namespace {

namespace fs = std::filesystem;

bool Exists(const std::string& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

/// A drive counts wherever the program runs: the name comes from another machine then.
bool IsAbsolute(std::string_view path) {
  return path.starts_with('/') || path.starts_with('\\') || (path.size() > 1 && path[1] == ':');
}

/// Small letters for ASCII and for the accented letters of Western Europe in UTF-8.
std::string Folded(std::string_view name) {
  std::string folded(name);
  for (std::size_t i = 0; i < folded.size(); ++i) {
    const auto byte = static_cast<unsigned char>(folded[i]);
    const bool accented = i > 0 && folded[i - 1] == '\xC3' && byte >= 0x80 && byte <= 0x9E && byte != 0x97;
    folded[i] = accented ? static_cast<char>(byte + 0x20) : LowerCase(folded[i]);
  }
  return folded;
}

std::vector<std::string> Parts(const std::string& path) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    if (end > start) parts.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

std::string Joined(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.back() == '/' ? folder + name : folder + '/' + name;
}

/// Names in the folder that differ from the wanted one in case only, in a fixed order.
std::vector<std::string> OtherSpellings(const std::string& folder, const std::string& name) {
  std::vector<std::string> spellings;
  const std::string wanted = Folded(name);
  std::error_code failed;
  fs::directory_iterator entry(folder.empty() ? "." : folder, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    std::string found = entry->path().filename().string();
    if (found != name && Folded(found) == wanted) spellings.push_back(std::move(found));
  }
  std::sort(spellings.begin(), spellings.end());
  return spellings;
}

/// Follows the parts from `index` on below a folder; empty when they lead nowhere.
std::string Follow(const std::string& folder, const std::vector<std::string>& parts, std::size_t index) {
  if (index == parts.size()) return folder;
  const std::string exact = Joined(folder, parts[index]);
  if (Exists(exact)) {
    std::string found = Follow(exact, parts, index + 1);
    if (!found.empty()) return found;
  }
  for (const std::string& name : OtherSpellings(folder, parts[index])) {
    std::string found = Follow(Joined(folder, name), parts, index + 1);
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace

std::string ExistingPath(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos || Exists(path)) return path;
  std::string slashed = path;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  const std::string found = Follow(slashed[0] == '/' ? "/" : "", Parts(slashed), 0);
  return found.empty() || !Exists(found) ? path : found;
}

std::string PathNamedIn(const std::string& namingFile, const std::string& name) {
  if (name.empty() || IsAbsolute(name) || Exists(ExistingPath(name))) return name;
  const std::string beside = DirectoryOf(namingFile) + name;
  return Exists(ExistingPath(beside)) ? beside : name;
}

std::string FullPath(const std::string& path) {
  if (path.empty() || IsAbsolute(path)) return path;
  std::error_code failed;
  const fs::path working = fs::current_path(failed);
  std::string slashed = path;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  return failed ? path : (working / slashed).lexically_normal().string();
}

std::string DirectoryOf(const std::string& path) {
  return path.substr(0, path.find_last_of("/\\") + 1);
}

}  // namespace hylden
