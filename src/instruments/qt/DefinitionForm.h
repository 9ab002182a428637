#pragma once

#include <memory>

#include "instruments/DefinitionTexts.h"
#include "instruments/InstrumentTrial.h"
#include "shell/qt/SetupForm.h"

class QLabel;
class QLineEdit;

namespace hylden {

class DefinitionEditor;
class RfLamp;
struct Instruments;

/// What the editors of instrument definitions have in common, which is all but their boxes: files, printing, the marks
/// at boxes whose text can't be taken, and the Test menu. A form's entries are found by their names.
class DefinitionForm : public SetupForm {
  Q_OBJECT

 public:
  ~DefinitionForm() override;

  InstrumentKind Kind() const;
  /// Loads a definition, after the question about one that is not saved.
  void LoadFile(const QString& path);
  /// Puts another parse expression into its box; it is saved with the definition.
  void TakeExpression(const QString& expression);
  /// Ends the entry of the Test menu that waits, or else RF.
  void PressHalt();

  QString HelpTopic() const override;

 signals:
  /// A definition was loaded or saved: its file is the driver's.
  void FileTaken();
  /// The parse tester is wanted, for the answer that was read last.
  void ParseTesterRequested(const QString& answer, const QString& expression);

 protected:
  /// The form that derives sets up its controls and then calls Begin.
  DefinitionForm(InstrumentKind kind, Shell& shell, Instruments& instruments, QWidget* parent);
  void Begin();

  bool QueryUnload() override;
  void Hurry() override;
  void CommandEnded() override;
  std::optional<FormEntries> SavedEntries() const override;
  bool SaveEntries() override;
  void EnableControls() override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectFileMenu();
  void ConnectTestMenu();
  QAction& Entry(const std::string& name) const;
  void Show();
  void ShowFileName();
  /// Marks the boxes whose texts can't be taken over.
  void ShowRefused();
  /// The state of the trial, and what it offers.
  void ShowTrial();
  /// @return false after the prompt at the entry that can't be taken
  bool TakeForm();
  void Test(const InstrumentTrial::Entry& entry);
  void AskForTester();
  void New();
  void AskAndLoad();
  bool SaveAs();
  bool SaveTo(const std::string& path);

  Instruments& instruments_;
  std::unique_ptr<DefinitionEditor> editor_;
  QLabel* state_;
  QString lastEntry_;                ///< of the Test menu, and whether it was done
  RfLamp* lamp_ = nullptr;           ///< where RF is at stake
  QLineEdit* expression_ = nullptr;  ///< where answers are parsed
};

}  // namespace hylden
