#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Printer.h"
#include "text/RuntimeError.h"

namespace hylden {

/// Keeps the jobs; can be cancelled by the operator, and can fail.
class FakePrinter : public Printer {
 public:
  bool Print(const PrintJob& job) override {
    if (failure) throw RuntimeError(*failure);
    if (cancelled) return false;
    jobs.push_back(job);
    return true;
  }

  /// The texts of a job's lines, in order.
  std::vector<std::string> Lines(std::size_t job = 0) const {
    std::vector<std::string> texts;
    for (const PrintedLine& line : jobs.at(job).lines) texts.push_back(line.text);
    return texts;
  }

  std::vector<PrintJob> jobs;
  bool cancelled = false;
  std::optional<ErrorNumber> failure;
};

}  // namespace hylden
