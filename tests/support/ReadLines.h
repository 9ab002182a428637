#pragma once

#include <string>
#include <vector>

#include "text/TextFile.h"

namespace hylden {

/// All lines of a file, in order. @throws RuntimeError as ReadTextFile
inline std::vector<std::string> ReadLines(const std::string& path) {
  LineReader reader(ReadTextFile(path));
  std::vector<std::string> lines;
  while (!reader.AtEnd()) lines.push_back(reader.ReadLine());
  return lines;
}

}  // namespace hylden
