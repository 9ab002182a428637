#pragma once

#include <memory>

#include "documents/qt/SetupForm.h"

namespace hylden {

class RunCablCal;
struct CableSetupEntries;
struct Documents;
namespace Ui {
class frmCblSetup;
}

/// The set-up of a cable insertion-loss calibration. It lives as long as the program.
class frmCblSetup : public SetupForm {
  Q_OBJECT

 public:
  /// @param calibration  holds the setup; must outlive the form
  frmCblSetup(Shell& shell, Documents& documents, RunCablCal& calibration, QWidget* parent = nullptr);
  ~frmCblSetup() override;

  /// Makes a file the frequency list and chooses its steps; one that does not read as a list is refused.
  void UseList(const QString& path);
  /// Enables the button of the list builder when the program around has one.
  void Offer(bool listBuilder);

  QString HelpTopic() const override { return QStringLiteral("insertion loss"); }

 signals:
  /// The list builder is wanted; the list composed there comes back through UseList.
  void CreateListRequested(const QString& listFile);
  /// The station lacks something: open the equipment form, modally, on this page.
  void EditEquipmentRequested(int tab);
  /// The points are planned: open the passes in the place of this form.
  void StartRequested();

 private:
  CableSetupEntries Entries() const;
  void ShowEntries(CableSetupEntries entries);
  void EnableControls();
  void SelectListFile();
  void CreateList();
  void Start();

  Documents& documents_;
  RunCablCal& run_;
  std::unique_ptr<Ui::frmCblSetup> ui_;
};

}  // namespace hylden
