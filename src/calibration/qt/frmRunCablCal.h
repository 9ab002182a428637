#pragma once

#include <memory>

#include "calibration/CableCalibration.h"
#include "calibration/CalRunCurves.h"
#include "run/qt/RowTable.h"
#include "run/qt/RunWindow.h"

namespace hylden {

namespace Ui {
class frmRunCablCal;
}

/// The two passes of a cable insertion-loss calibration.
class frmRunCablCal : public RunWindow {
  Q_OBJECT

 public:
  /// @param calibration  planned; must outlive the form
  frmRunCablCal(Shell& shell, Instruments& instruments, RunCablCal& calibration, QWidget* parent = nullptr);
  ~frmRunCablCal() override;

  QString HelpTopic() const override { return QStringLiteral("insertion loss"); }

 signals:
  /// A pass starts: through the cable, or straight.
  void PassStarting(bool inserted);

 private:
  void SetRunning(bool running) override;
  void Show(Readout readout, std::optional<double> value) override;
  void RowChanged(int row) override;

  void SetUpCurves();
  CablePassShown Shown() const { return {passing_, inserted_, measured_}; }
  void StartPass(bool inserted);
  void ShowReadings();
  std::string Cell(std::size_t row, std::size_t column) const;

  RunCablCal& run_;
  std::unique_ptr<Ui::frmRunCablCal> ui_;
  RowTable table_;
  std::unique_ptr<CableCurves> curves_;  ///< those that are shown
  bool passing_ = false;                 ///< a pass is shown, not all that was read
  bool inserted_ = false;                ///< which one
  std::size_t measured_ = 0;             ///< how many points it has measured
};

}  // namespace hylden
