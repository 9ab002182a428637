#pragma once

#include <QDialog>
#include <memory>

namespace hylden {

namespace Ui {
class frmWelcome;
}

/// What a new user can begin with; shown once, above the main menu. A choice closes it.
class frmWelcome : public QDialog {
  Q_OBJECT

 public:
  /// @param hasDemo  a demo station came with the program
  frmWelcome(bool hasDemo, QWidget* parent);
  ~frmWelcome() override;

 signals:
  void DemoRequested();
  void OwnStationRequested();
  void ManualRequested();

 private:
  std::unique_ptr<Ui::frmWelcome> ui_;
};

}  // namespace hylden
