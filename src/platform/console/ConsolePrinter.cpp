#include "platform/console/ConsolePrinter.h"

#include <vector>

#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {

bool ConsolePrinter::Print(const PrintJob& job) {
  if (out_) {
    for (const PrintedLine& line : job.lines) *out_ << (line.newPage ? "\f" : "") << line.text << '\n';
    if (!out_->flush()) throw RuntimeError(ErrorNumber::DeviceIoError);
    return true;
  }
  std::vector<std::string> lines;
  for (const PrintedLine& line : job.lines) lines.push_back((line.newPage ? "\f" : "") + line.text);
  const std::string all = printed_ + (printed_.empty() ? "" : "\f") + JoinLines(lines);
  try {
    ReplaceFile(path_, all);
  } catch (const RuntimeError& error) {  // who prints knows of no file
    throw RuntimeError(error.Number(), error.Description() + ": " + path_);
  }
  printed_ = all;
  return true;
}

}  // namespace hylden
