#pragma once

#include <memory>

#include "documents/CalSetupRecord.h"
#include "documents/qt/SetupForm.h"

namespace hylden {

struct CalSetupEntries;
struct Documents;
struct EntryFailure;
struct Instruments;
namespace Ui {
class frmCalSetup;
}

/// The calibration setup: which frequencies are calibrated, to which level, with which coupling device. What was typed
/// stays in the setup when the form closes, checked or not.
class frmCalSetup : public SetupForm {
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
  /// Makes a file the frequency list and its ends the range; one that does not read as a list is refused.
  void UseList(const QString& path);
  /// Makes a file the test level; one that does not read as a factor table is refused.
  void UseLevelFile(const QString& path);
  /// Enables what opens the list builder and the factor file editor when the program around has them.
  void Offer(bool listBuilder, bool factorEditor);

  QString HelpTopic() const override;

 signals:
  /// The list builder is wanted; the list composed there comes back through UseList.
  void CreateListRequested(const QString& listFile);
  /// The factor file editor is wanted for test level files.
  void EditLevelRequested(const QString& levelFile);
  /// The station lacks something for this calibration: open the equipment form, modally, on this page.
  void EditEquipmentRequested(int tab);
  /// Setup and station are complete: open the calibration run in the place of this form.
  void StartRequested();

 protected:
  bool QueryUnload() override;
  bool HasUnsaved() const override;
  bool SaveEntries() override;

 private:
  void ConnectCommands();
  void ConnectRules();

  CalSetupEntries Entries() const;
  void ShowEntries(CalSetupEntries entries);
  void EnableControls();
  void ApplyRule(QAbstractButton* button, void (*rule)(CalSetupEntries&));
  void Explain(const EntryFailure& failure);
  /// Whether the form shows this setup.
  bool Shows(const CalSetupRecord& setup) const;
  bool MayDropEntries();
  void ShowFile();

  void Load();
  bool SaveAs();
  bool SaveTo(const std::string& path);
  void SelectListFile();
  void SelectLevelFile();
  void CreateList();
  void Start();

  Instruments& instruments_;
  Documents& documents_;
  std::unique_ptr<Ui::frmCalSetup> ui_;
  /// Unsaved when the form opened: it was asked about before, and leaving the form costs none of it.
  std::optional<CalSetupRecord> kept_;
};

}  // namespace hylden
