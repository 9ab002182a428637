#include "shell/FormInput.h"

#include <gtest/gtest.h>

namespace hylden {
namespace {

TEST(FormInputTest, APathIsShortenedToAnotherFile) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"C:\\lab\\cables\\one.los", "C:\\...\\one.los", "one.los"},
      {"C:\\lab\\one.los", "C:\\lab\\one.los", "one.los"},
      {"/home/lab/cables/one.los", "/.../one.los", "one.los"},
      {"/lab/one.los", "/lab/one.los", "one.los"},
      {"one.los", "one.los", "one.los"},
      {"C:\\lab/cables/one.los", "C:\\...\\one.los", "one.los"},
      {"C:\\lab\\cables\\", "C:\\...\\", ""},
      {"", "", ""},
  };
  for (const auto& [path, shortened, name] : rows) {
    EXPECT_EQ(ShortenPath(path), shortened) << path;
    EXPECT_EQ(FileNameOnly(path), name) << path;
  }
}

TEST(FormInputTest, AValueInAnotherSpellingIsNoChange) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"80", "80.0", true}, {"", "", true},    {"x", "x", true},          {".5", "0.5", true},   {"80", "80.1", false},
      {"0", "", false},     {"x", "y", false}, {"1e400", "1e401", false}, {"1e3", "1000", true}, {"80", "80x", false}};
  for (const auto& [a, b, same] : rows) EXPECT_EQ(SameEntry(a, b), same) << a << " and " << b;
}

}  // namespace
}  // namespace hylden
