#pragma once

#include <QString>
#include <functional>
#include <string>

#include "platform/Printer.h"

class QPrinter;

namespace hylden {

/// Reports on paper through the system's printers, or as PDF; with a preview.
class QtPrinter : public Printer {
 public:
  /// Where the printer dialog offers to put a PDF; the toolkit's own place when it is not set.
  std::function<std::string()> pdfDirectory;

  /// Jobs go to the default printer, or to the one that the operator chooses. Without any printer on the machine the
  /// operator is asked too: PDF is always on offer.
  /// @throws RuntimeError when the printer or the PDF file fails
  bool Print(const PrintJob& job) override;

  /// From now on every job is written to this PDF file without asking; an empty path ends that.
  void SetOutputFile(const QString& path) { outputFile_ = path; }

  /// While it lives, jobs are shown in the preview window, which prints when told to.
  class Previewing {
   public:
    explicit Previewing(QtPrinter& printer) : printer_(printer) { printer_.preview_ = true; }
    ~Previewing() { printer_.preview_ = false; }
    Previewing(const Previewing&) = delete;
    Previewing& operator=(const Previewing&) = delete;

   private:
    QtPrinter& printer_;
  };

 private:
  bool Preview(const PrintJob& job);

  QString outputFile_;
  bool preview_ = false;
};

/// Lays the job out on the printer's pages; a line that is wider than the page goes on in the next one.
/// @throws RuntimeError when the printer fails
void PaintJob(const PrintJob& job, QPrinter& printer);

}  // namespace hylden
