#pragma once

#include <memory>

#include "documents/CurveOverlay.h"
#include "shell/qt/SetupForm.h"

namespace hylden {

namespace Ui {
class frmCalCurves;
}

/// Files of one kind as curves, laid over each other, and their differences to the first: a cable gone bad or an
/// amplifier that has lost gain is seen before a test. It stands beside the form that it was opened from. While a run
/// is on it opens no box, which would hold the run up.
class frmCalCurves : public SetupForm {
  Q_OBJECT

 public:
  frmCalCurves(Shell& shell, CurveKind kind, QWidget* parent = nullptr);
  ~frmCalCurves() override;

  /// Shows a file, over those that are shown. @return false after a message; what was shown stays
  bool AddFile(const std::string& path);
  /// The same after asking for a file. @param beside  where the dialog begins; empty: where it was last
  bool AskAndAdd(const std::string& beside);

  const CurveOverlay& Files() const { return files_; }

  bool StandsBeside() const override { return true; }
  QString HelpTopic() const override { return QStringLiteral("Curves of a calibration"); }

 private:
  void ConnectCommands();
  bool MayAsk();
  CurveChoice Choice() const;
  int ChosenFile() const;
  void OfferQuantities();
  void ShowFiles(int chosen);
  void ShowCurves();
  void ShowSummaries();
  void EnableCommands();
  void SavePicture();

  CurveOverlay files_;
  const CurveKind kind_;
  std::unique_ptr<Ui::frmCalCurves> ui_;
};

}  // namespace hylden
