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

}  // namespace
}  // namespace hylden
