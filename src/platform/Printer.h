#pragma once

#include <string>
#include <vector>

namespace hylden {

/// One line of text on a page, in "Courier New".
struct PrintedLine {
  std::string text;
  int points = 10;
  bool bold = false;
  bool newPage = false;  ///< begins a new page
};

/// Lines in printing order.
struct PrintJob {
  std::string title;
  /// Each page is scaled to 100 units of height. Printing starts at `top`; before a line that would start below
  /// `bottom` a new page is begun.
  double top = 0;
  double bottom = 100;
  /// Whether the operator is asked for the printer first; a cancel ends the job silently.
  bool askForPrinter = false;
  std::vector<PrintedLine> lines;
};

class Printer {
 public:
  virtual ~Printer() = default;
  /// Prints the job; false when the operator cancelled. @throws RuntimeError when the printer fails
  virtual bool Print(const PrintJob& job) = 0;
};

}  // namespace hylden
