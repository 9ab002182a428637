#include "shell/FormInput.h"

#include <gtest/gtest.h>

namespace hylden {
namespace {

TEST(FormInputTest, APathIsShortenedToAnotherFile) {
  struct Row {
    const char *path, *shortened, *name;
  };
  const Row rows[] = {
      {"C:\\lab\\cables\\one.los", "C:\\...\\one.los", "one.los"},
      {"C:\\lab\\one.los", "C:\\lab\\one.los", "one.los"},
      {"/home/lab/cables/one.los", "/.../one.los", "one.los"},
      {"/lab/one.los", "/lab/one.los", "one.los"},
      {"one.los", "one.los", "one.los"},
      {"C:\\lab/cables/one.los", "C:\\...\\one.los", "one.los"},
      {"C:\\lab\\cables\\", "C:\\...\\", ""},
      {"", "", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ShortenPath(row.path), row.shortened) << row.path;
    EXPECT_EQ(FileNameOnly(row.path), row.name) << row.path;
  }
}

TEST(FormInputTest, AValueInAnotherSpellingIsNoChange) {
  struct Row {
    const char *a, *b;
    bool same;
  };
  const Row rows[] = {{"80", "80.0", true},  {"", "", true},      {"x", "x", true},  {".5", "0.5", true},
                      {"80", "80.1", false}, {"0", "", false},    {"x", "y", false}, {"1e400", "1e401", false},
                      {"1e3", "1000", true}, {"80", "80x", false}};
  for (const Row& row : rows) EXPECT_EQ(SameEntry(row.a, row.b), row.same) << row.a << " and " << row.b;
}

}  // namespace
}  // namespace hylden
