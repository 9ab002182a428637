#include "testrun/qt/frmReport.h"

#include <QDir>
#include <QFileInfo>
#include <utility>

#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "testrun/qt/ReportPdf.h"
#include "ui_frmReport.h"

namespace hylden {

frmReport::frmReport(Shell& shell, OpenedRun run, QWidget* parent)
    : QDialog(parent), shell_(shell), ui_(std::make_unique<Ui::frmReport>()), run_(std::move(run)) {
  ui_->setupUi(this);
  const RunParticulars ofRun = run_.Beside.Info ? run_.Beside.Info->Particulars : RunParticulars();
  ShowParticulars(ParticularsToOffer(shell.settings, ofRun));
  const ReportChoices choices = LoadReportChoices(shell.settings);
  ui_->cboPaper->setCurrentIndex(static_cast<int>(choices.Paper));
  ui_->chkAllSteps->setChecked(choices.AllSteps);
}

frmReport::~frmReport() = default;

void frmReport::ShowParticulars(const RunParticulars& particulars) {
  ui_->txtLab->setText(ToQt(particulars.Lab));
  ui_->txtCustomer->setText(ToQt(particulars.Customer));
  ui_->txtProduct->setText(ToQt(particulars.Product));
  ui_->txtOperator->setText(ToQt(particulars.Operator));
  ui_->txtAmbient->setText(ToQt(particulars.Ambient));
  QStringList remarks;
  for (const std::string& remark : particulars.Remarks) remarks << ToQt(remark);
  ui_->txtRemarks->setPlainText(remarks.join(QLatin1Char('\n')));
}

RunParticulars frmReport::Particulars() const {
  const auto text = [](const QLineEdit* box) { return FromQt(box->text().trimmed()); };
  RunParticulars particulars{text(ui_->txtLab),      text(ui_->txtCustomer), text(ui_->txtProduct),
                             text(ui_->txtOperator), text(ui_->txtAmbient),  {}};
  const QString remarks = ui_->txtRemarks->toPlainText().trimmed();
  if (!remarks.isEmpty())
    for (const QString& line : remarks.split(QLatin1Char('\n'))) particulars.Remarks.push_back(FromQt(line));
  return particulars;
}

ReportChoices frmReport::Choices() const {
  return {static_cast<ReportPaper>(ui_->cboPaper->currentIndex()), ui_->chkAllSteps->isChecked()};
}

std::optional<std::string> frmReport::AskFile() {
  const QFileInfo runData(ToQt(run_.File));
  const QString name = run_.File.empty() ? QStringLiteral("report") : runData.completeBaseName();
  const std::string directory =
      run_.File.empty() ? shell_.settings.GetDataDir(datakind::kTestResults) : FromQt(runData.absolutePath());
  return shell_.dialogs.SaveFile({"Save report", "PDF (*.pdf)|*.pdf", directory, FromQt(name) + ".pdf"});
}

/// Keeps what was entered beside the run data; what lies there and can't be read is not replaced.
bool frmReport::KeepParticulars() {
  RunParticulars particulars = Particulars();
  try {
    RememberParticulars(shell_.settings, particulars);
    SaveReportChoices(shell_.settings, Choices());
  } catch (const RuntimeError&) {
    // The report does not wait for the settings.
  }
  RunInfo& info = run_.Beside.Info ? *run_.Beside.Info : run_.Beside.Info.emplace();
  info.Particulars = std::move(particulars);
  return run_.File.empty() || !run_.Beside.Trouble.empty() ||
         shell_.Ok(FileRunInfo(info, run_.File, run_.Beside.Checksum));
}

void frmReport::accept() {
  const auto file = AskFile();
  if (!file || !KeepParticulars()) return;
  if (!shell_.Ok(FileReport(run_, Choices(), *file))) return;
  savedFile_ = *file;
  QDialog::accept();
}

}  // namespace hylden
