#pragma once

#include <memory>

#include "documents/qt/RunSetupForm.h"

namespace hylden {

class RunCablCal;
struct Documents;
namespace Ui {
class frmCblSetup;
}

/// The set-up of a cable insertion-loss calibration. It lives as long as the program.
class frmCblSetup : public RunSetupForm {
  Q_OBJECT

 public:
  /// @param calibration  holds the setup; must outlive the form
  frmCblSetup(Shell& shell, Documents& documents, RunCablCal& calibration, QWidget* parent = nullptr);
  ~frmCblSetup() override;

  /// Makes a file the frequency list and chooses its steps; one that does not read as a list is refused.
  void UseList(const QString& path) override;

  QString HelpTopic() const override { return QStringLiteral("insertion loss"); }

 private:
  UsedControls UsedNow() const override;
  void Start();

  Documents& documents_;
  RunCablCal& run_;
  std::unique_ptr<Ui::frmCblSetup> ui_;
};

}  // namespace hylden
