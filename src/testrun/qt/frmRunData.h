#pragma once

#include <memory>

#include "run/qt/RowTable.h"
#include "shell/qt/WorkingForm.h"
#include "testrun/OpenedRun.h"
#include "testrun/qt/SavedRunTable.h"

namespace hylden {

namespace Ui {
class frmRunData;
}

/// A run that was saved, to be looked at: its rows, curves and thresholds, what is known of it, and other runs beside
/// it. It stands beside the work and never has a box while a run is on.
class frmRunData : public WorkingForm {
  Q_OBJECT

 public:
  explicit frmRunData(Shell& shell, QWidget* parent = nullptr);
  ~frmRunData() override;

  /// Shows a run data file, without a box: what can't be read is said in the window.
  void LoadFile(const std::string& file);
  /// Lays another one over it. What can't be read is said in the window.
  void CompareWith(const std::string& file);
  const OpenedRun& Shown() const { return run_; }

  bool StandsBeside() const override { return true; }
  QString HelpTopic() const override { return QStringLiteral("Saved runs"); }

 signals:
  /// Another file is to be opened in a window of its own.
  void OpenRequested();
  /// Escape was pressed while a run is on.
  void EscapePressed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectMenus();
  void ConnectRows();
  /// A menu entry that asks something: not while a run is on, whose turn a box would hold up.
  void OnAsking(QAction* entry, std::function<void()> command);
  void AskForOther();
  void MakeReport();
  void Export();
  void ShowTrouble(const QString& text);
  void ShowRun();
  void ShowRows();
  void ShowCurves();
  void ShowThresholds();
  /// Shows a row, counted from 1, in the table and on its curve.
  void ChooseRow(int row);
  void RowChosen(int row);
  std::string ThresholdCell(std::size_t index, std::size_t column) const;

  std::unique_ptr<Ui::frmRunData> ui_;
  OpenedRun run_;
  RunCurveContext context_;  ///< with the units that are chosen
  std::unique_ptr<RunCurves> curves_;
  SavedRunTable table_;
  RowTable thresholds_;
  std::vector<int> thresholdRows_;
};

}  // namespace hylden
