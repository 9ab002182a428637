#pragma once

#include <string>

namespace hylden {

/// A file as it was loaded or saved last, so that a save notices what somebody else has written into it since.
class KnownFile {
 public:
  KnownFile() = default;
  /// As it is now; one that can't be read holds nothing.
  explicit KnownFile(const std::string& path);
  /// @param content  its bytes
  KnownFile(std::string path, std::string content) : path_(std::move(path)), content_(std::move(content)) {}

  const std::string& Path() const { return path_; }
  const std::string& Content() const { return content_; }
  /// What a save would lose, as a line for its question; empty where the file is as it was, or is gone.
  std::string LostByReplacing() const;

 private:
  std::string path_, content_;
};

}  // namespace hylden
