#pragma once

#include <ostream>
#include <string>
#include <utility>

#include "platform/Printer.h"

namespace hylden {

/// Prints as text, a line to a line, without pages; in a file a form feed stands between jobs.
class ConsolePrinter : public Printer {
 public:
  explicit ConsolePrinter(std::ostream& out) : out_(&out) {}
  /// All jobs of the program's run go to this file; the first one replaces what was there.
  explicit ConsolePrinter(std::string path) : path_(std::move(path)) {}

  bool Print(const PrintJob& job) override;

 private:
  std::ostream* out_ = nullptr;
  std::string path_;
  std::string printed_;
};

}  // namespace hylden
