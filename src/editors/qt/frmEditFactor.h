#pragma once

#include <QTimer>
#include <memory>
#include <string>
#include <vector>

#include "editors/FactorTableText.h"
#include "shell/KnownFile.h"
#include "shell/qt/SetupForm.h"

class QLabel;

namespace hylden {

class EditGrid;
namespace Ui {
class frmEditFactor;
}

/// The editor of factor files: coupling factors, test levels, cable losses, amplifier powers and probe factors, as a
/// table and as the curve that the program makes of it. Nothing is written but by Save.
class frmEditFactor : public SetupForm {
  Q_OBJECT

 public:
  explicit frmEditFactor(Shell& shell, QWidget* parent = nullptr);
  ~frmEditFactor() override;

  /// The kind of file that the dialogs offer first: 0 coupling factors, 1 test levels, 2 losses, 3 texts, 4 all. Other
  /// values change nothing.
  void FilterDefault(int kind);
  /// Loads a file, after a question where changes are not saved; one that is no table changes nothing.
  void LoadFile(const QString& path);

  QString HelpTopic() const override { return QStringLiteral("Editing a factor file"); }

 protected:
  bool QueryUnload() override { return MayLeave(); }
  bool HasUnsaved() const override;
  bool SaveEntries() override;

 private:
  void ConnectMenus();
  void ConnectCurve();
  void AskAndLoad();
  void Load(const std::string& path);
  bool ReadTable(const std::string& path, std::vector<GridRow>& rows);
  bool SaveAs();
  bool MayReplaceFile(const std::string& path);
  bool SaveGrid(const std::string& path);
  void ExportCurve();
  void UseFile(KnownFile file);
  void CellsEdited();
  void LookAtCells();
  void ShowCurve();
  void ShowCurrentPoint();
  std::string FaultAt(GridPlace place) const;

  std::unique_ptr<Ui::frmEditFactor> ui_;
  std::unique_ptr<EditGrid> grid_;  ///< goes before the controls that it has
  QLabel* status_;
  QTimer look_;        ///< at the cells, when the operator pauses
  FactorTable table_;  ///< as it was seen last
  std::string pattern_ = "*.fac";
  KnownFile file_;              ///< loaded, or saved last
  std::string notKept_;         ///< what a save would drop of it
  std::vector<GridRow> saved_;  ///< the rows that it holds
};

}  // namespace hylden
