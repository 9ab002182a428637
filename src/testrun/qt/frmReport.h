#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <string>

#include "testrun/ReportChoices.h"
#include "testrun/RunReportText.h"

namespace hylden {

class Shell;
namespace Ui {
class frmReport;
}

/// Asks what the report of a run needs beside its data, and saves it: whom the run was for, remarks, paper, and whether
/// all steps are listed. What is entered is remembered for the next report and, where the run data are in a file, kept
/// in the information beside it.
class frmReport : public QDialog {
  Q_OBJECT

 public:
  frmReport(Shell& shell, OpenedRun run, QWidget* parent = nullptr);
  ~frmReport() override;

  /// The report that was saved; empty after Cancel.
  const std::string& SavedFile() const { return savedFile_; }

  /// Asks for the file and writes it; the dialog stays when there is none.
  void accept() override;

  /// As they were entered.
  RunParticulars Particulars() const;

 private:
  void ShowParticulars(const RunParticulars& particulars);
  ReportChoices Choices() const;
  std::optional<std::string> AskFile();
  bool KeepParticulars();

  Shell& shell_;
  std::unique_ptr<Ui::frmReport> ui_;
  OpenedRun run_;
  std::string savedFile_;
};

}  // namespace hylden
