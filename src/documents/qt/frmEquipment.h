#pragma once

#include <memory>

#include "documents/EquipRecord.h"
#include "instruments/DefinitionTexts.h"
#include "shell/qt/SetupForm.h"

class QLineEdit;
class QToolButton;

namespace hylden {

class Equip;
class PathLabel;
struct Instruments;
namespace Ui {
class frmEquipment;
}

/// The kinds of factor files, numbered as their editor offers them.
enum class FactorKind { Factor = 0, Level = 1, Loss = 2 };
enum class Utility { Interpolation, Shortcut, SystemCheck };

/// The station's equipment: which definitions, addresses and tables it consists of, and how its amplifier and power
/// meter are arranged. Changes go into the record when the form closes; the file is written by Save only.
class frmEquipment : public SetupForm {
  Q_OBJECT

 public:
  frmEquipment(Shell& shell, Instruments& instruments, Equip& equip, QWidget* parent = nullptr);
  ~frmEquipment() override;

  /// Turns to a page: 0 instruments, 1 factor tables, 2 amplifier.
  void ShowTab(int tab);
  /// Makes the definition that the driver has loaded the station's, as when it is chosen here.
  void UseDefinition(InstrumentKind kind);
  /// Fills the form afresh when another equipment form has changed the station.
  void ShowChanges();
  /// Copies the form into the record; false when an entry is invalid, after its prompt.
  bool ApplyEquipment();
  /// Makes the file the current one and shows it; after a failure record and form stay as they were.
  void LoadFile(const QString& path);

  QString HelpTopic() const override;

 signals:
  /// The editor of the instrument's definition is wanted; the form's entries are in the record.
  void DefineInstrumentRequested(InstrumentKind kind);
  void EditFactorRequested(FactorKind kind);
  void InsertionLossRequested();
  /// The window of the bus is wanted; the form's entries are in the record.
  void BusRequested();
  void UtilityRequested(Utility utility);
  /// Another station is loaded: its definitions and addresses are the drivers' now.
  void StationLoaded();
  /// The entries are in the record, up to one that is refused.
  void EntriesTaken();

 protected:
  bool QueryUnload() override;
  std::optional<FormEntries> SavedEntries() const override;
  bool SaveEntries() override;

 private:
  struct InstrumentRow;
  struct TableRow;

  void ConnectFileMenu();
  void ConnectInstruments();
  void ConnectTables();
  void ConnectAmplifier();

  InstrumentRow Row(InstrumentKind kind);
  template <class Driver>
  void ShowInstrument(InstrumentKind kind, const Driver& driver);
  void ShowInstruments();
  void SelectInstrument(InstrumentKind kind);
  template <class Driver>
  void SelectDefinition(Driver& driver, InstrumentKind kind);
  template <class Driver>
  void TakeDefinition(const Driver& driver, InstrumentKind kind);
  void ClearInstrument(InstrumentKind kind);
  void SelectTable(const TableRow& row);
  void ShowRecord();
  void ShowFileName();
  UsedControls UsedNow() const override;
  void EnableControls() override;
  void AskAndLoad();
  bool SaveAs();
  bool SaveTo(const std::string& path);
  void RequestInsertionLoss();

  Instruments& instruments_;
  Equip& equip_;
  std::unique_ptr<Ui::frmEquipment> ui_;
};

}  // namespace hylden
