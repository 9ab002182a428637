#pragma once

#include <memory>

#include "documents/CalInfo.h"
#include "documents/TestDefinition.h"
#include "documents/qt/SetupForm.h"

class QLabel;

namespace hylden {

struct Documents;
struct TestDefinitionEntries;
namespace Ui {
class frmTestDef;
}

/// The test definition: which calibration is replayed, over which frequencies, with which modulation and levelling.
/// What the form holds goes into the record when it is saved or started; leaving the form drops it.
class frmTestDef : public SetupForm {
  Q_OBJECT

 public:
  frmTestDef(Shell& shell, Documents& documents, QWidget* parent = nullptr);
  ~frmTestDef() override;

  /// Shows the record.
  void DefToForm();
  /// Checks the form and takes it into the record, up to the first invalid entry, which is pointed out; false then.
  bool FormToDef();
  /// Shows what the calibration record says about itself.
  void ShowCalInfo();
  /// Loads a definition and the calibration info that it names; after a failure the form stays as it was.
  void LoadFile(const QString& path);
  /// Makes a file the frequency list and asks for the discrete test; one that does not read as a list is refused.
  void UseList(const QString& path);
  /// Prints what is on the form, when its entries are good.
  void Print();
  /// Enables the button of the list builder when the program around has one.
  void Offer(bool listBuilder);

  QString HelpTopic() const override;

 signals:
  /// The list builder is wanted; the list composed there comes back through UseList.
  void CreateListRequested(const QString& listFile);
  /// The station lacks something for this test: open the equipment form, modally, on this page.
  void EditEquipmentRequested(int tab);
  /// Definition and station are complete: open the test run in the place of this form.
  void StartRequested();
  /// Show in the preview what Print would print.
  void PrintPreviewRequested();

 protected:
  bool QueryUnload() override;
  bool HasUnsaved() const override;
  bool SaveEntries() override;

 private:
  void ConnectCommands();
  void ConnectRules();

  TestDefinitionEntries Entries() const;
  void ShowEntries(TestDefinitionEntries entries);
  /// Whether the form shows this definition.
  bool Shows(const TestDefinition& test) const;
  bool MayDropEntries();
  bool TakeInto(TestDefinition& test);
  void ShowFile();
  void EnableControls();
  void ApplyRule(QAbstractButton* button, void (*rule)(TestDefinitionEntries&));

  void Load();
  bool SaveAs();
  bool SaveTo(const std::string& path);
  void SelectCalFile();
  void SelectListFile();
  void CreateList();
  void Start();

  Documents& documents_;
  std::unique_ptr<Ui::frmTestDef> ui_;
  QLabel* readOnlyNotice_;
  /// The info of the calibration that the record names; the one shown may belong to a file chosen since.
  CalInfoRec calInfoOfRecord_;
  /// Unsaved when the form opened: it was asked about before, and leaving the form costs none of it.
  std::optional<TestDefinition> kept_;
};

}  // namespace hylden
