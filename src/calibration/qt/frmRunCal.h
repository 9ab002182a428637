#pragma once

#include <memory>

#include "calibration/CalRunCurves.h"
#include "calibration/LevelCalibration.h"
#include "run/qt/RowTable.h"
#include "run/qt/RunWindow.h"

namespace hylden {

namespace Ui {
class frmRunCal;
}

/// The running level calibration: its figures, its points and its buttons.
class frmRunCal : public RunWindow {
  Q_OBJECT

 public:
  frmRunCal(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent = nullptr);
  ~frmRunCal() override;

  /// Plans the run and loads its tables; what fails has been shown, and Start can't be pressed.
  void Load();
  /// The prepared run continues one that ended early, whose rows are shown; what keeps it from that is told.
  void Continue(FormerRun<CalRows> former);

  const LevelCalibration& Calibration() const { return calibration_; }
  QString HelpTopic() const override { return QStringLiteral("Calibrating: the run"); }

 private:
  void StartAfresh() override;
  void SetRunning(bool running) override;
  void Show(Readout readout, std::optional<double> value) override;

  void SetUpCurves();

  std::unique_ptr<Ui::frmRunCal> ui_;
  LevelCalibration calibration_;
  RowTable table_;
  std::vector<CurvePoint> targets_;
  std::unique_ptr<CalRunCurves> curves_;  ///< those that are shown
  QString testLevelTip_;                  ///< while there is no level to show
};

}  // namespace hylden
