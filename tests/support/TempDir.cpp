#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace hylden {

namespace fs = std::filesystem;

TempDir::TempDir() {
  std::string pattern = (fs::temp_directory_path() / "hylden-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
  path_ = pattern;
}

TempDir::~TempDir() {
  // A test may have taken away write permission.
  std::error_code ignored;
  fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ignored);
  fs::remove_all(path_, ignored);
}

std::string TempDir::Write(std::string_view name, std::string_view bytes) const {
  const fs::path path = path_ / name;
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) ADD_FAILURE() << "can't write " << path;
  return path.string();
}

std::string TempDir::Read(std::string_view name) const {
  std::ifstream file(path_ / name, std::ios::binary);
  if (!file) ADD_FAILURE() << "no file " << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

bool TempDir::Exists(std::string_view name) const {
  return fs::exists(path_ / name);
}

}  // namespace hylden
