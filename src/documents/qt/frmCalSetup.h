#pragma once

#include <memory>

#include "documents/qt/RunSetupForm.h"

namespace hylden {

struct Documents;
struct EntryFailure;
struct Instruments;
namespace Ui {
class frmCalSetup;
}

/// The calibration setup: which frequencies are calibrated, to which level, with which coupling device. What was typed
/// stays in the setup when the form closes, checked or not.
class frmCalSetup : public RunSetupForm {
  Q_OBJECT

 public:
  frmCalSetup(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent = nullptr);
  ~frmCalSetup() override;

  /// Shows the setup; a code that no option stands for is told.
  void SetupToForm();
  /// Takes the form into the setup. With validation it stops at the first invalid entry and points it out; without, it
  /// leaves out what is no number and always comes to true.
  bool FormToSetup(bool validate);
  /// Loads a setup; after a failure the form stays as it was.
  void LoadFile(const QString& path);
  /// Begins a new setup with what a template holds.
  void NewFrom(const QString& path);
  /// Makes a file the frequency list and its ends the range; one that does not read as a list is refused.
  void UseList(const QString& path) override;
  /// Makes a file the test level; one that does not read as a factor table is refused.
  void UseLevelFile(const QString& path);

  /// Checks the form and the station, and asks for the run.
  void Start();

  QString HelpTopic() const override;

 signals:
  /// The factor file editor is wanted for test level files, with the one that is chosen.
  void EditLevelRequested(const QString& levelFile);

 protected:
  bool QueryUnload() override;
  std::optional<FormEntries> SavedEntries() const override;
  bool SaveEntries() override;

 private:
  void ConnectCommands();

  UsedControls UsedNow() const override;
  void Explain(const EntryFailure& failure);
  void ShowFile();

  void Load();
  bool SaveAs();
  bool SaveTo(const std::string& path);
  void SelectLevelFile();

  Instruments& instruments_;
  Documents& documents_;
  std::unique_ptr<Ui::frmCalSetup> ui_;
};

}  // namespace hylden
