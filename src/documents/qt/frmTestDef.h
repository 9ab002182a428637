#pragma once

#include <memory>

#include "documents/CalInfo.h"
#include "documents/TestDefinition.h"
#include "documents/qt/RunSetupForm.h"

class QLabel;

namespace hylden {

struct Documents;
namespace Ui {
class frmTestDef;
}

/// The test definition: which calibration is replayed, over which frequencies, with which modulation and levelling.
/// What the form holds goes into the record when it is saved or started; leaving the form drops it.
class frmTestDef : public RunSetupForm {
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
  /// Begins a new definition with what a template holds.
  void NewFrom(const QString& path);
  /// Makes a file the frequency list and asks for the discrete test; one that does not read as a list is refused.
  void UseList(const QString& path) override;
  /// Prints what is on the form, when its entries are good.
  void Print();

  /// Checks the form and the station, and asks for the run.
  void Start();

  QString HelpTopic() const override;

 signals:
  /// Show in the preview what Print would print.
  void PrintPreviewRequested();

 protected:
  bool QueryUnload() override;
  std::optional<FormEntries> SavedEntries() const override;
  bool SaveEntries() override;

 private:
  void ConnectCommands();

  UsedControls UsedNow() const override;
  bool TakeInto(TestDefinition& test);
  void ShowFile();
  void ShowLoaded();
  void EnableControls() override;

  void Load();
  bool SaveAs();
  bool SaveTo(const std::string& path);
  void SelectCalFile();

  Documents& documents_;
  std::unique_ptr<Ui::frmTestDef> ui_;
  QLabel* readOnlyNotice_;
  /// The info of the calibration that the record names; the one shown may belong to a file chosen since.
  CalInfoRec calInfoOfRecord_;
};

}  // namespace hylden
