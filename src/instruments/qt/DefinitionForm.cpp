#include "instruments/qt/DefinitionForm.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <stdexcept>

#include "instruments/DefinitionEditor.h"
#include "instruments/Instruments.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "shell/qt/AboutBox.h"
#include "shell/qt/FormPrompts.h"
#include "widgets/RfLamp.h"
#include "widgets/ThemeColors.h"

namespace hylden {

DefinitionForm::DefinitionForm(InstrumentKind kind, Shell& shell, Instruments& instruments, QWidget* parent)
    : SetupForm(shell, parent, "Save Definition", TextsOf(kind).What),
      instruments_(instruments),
      editor_(DefinitionEditor::Of(kind, shell, instruments)),
      state_(new QLabel) {}

DefinitionForm::~DefinitionForm() = default;

void DefinitionForm::Begin() {
  for (const char* const box : {"txtParse", "txtParseString"})
    if (auto* const found = findChild<QLineEdit*>(QLatin1String(box))) expression_ = found;
  state_->setObjectName(QStringLiteral("lblTrial"));
  statusBar()->addWidget(state_);
  if (Kind() == InstrumentKind::SigGen) {
    lamp_ = new RfLamp;
    lamp_->setObjectName(QStringLiteral("lblRf"));
    statusBar()->addPermanentWidget(lamp_);
  }
  ConnectFileMenu();
  ConnectTestMenu();
  for (const QLineEdit* const box : findChildren<QLineEdit*>())
    connect(box, &QLineEdit::textChanged, this, &DefinitionForm::ShowRefused);
  Show();
  WatchEntries();
  ShowTrial();
}

QAction& DefinitionForm::Entry(const std::string& name) const {
  auto* const entry = findChild<QAction*>(ToQt(name));
  if (!entry) throw std::logic_error("no entry " + name);
  return *entry;
}

void DefinitionForm::ConnectFileMenu() {
  OfferFiles(findChild<QMenu*>(QStringLiteral("mnuFileRecent")), editor_->Texts().Suffix,
             QLatin1String(editor_->Texts().Suffix), [this](const QString& path) { LoadFile(path); });
  On(&Entry("mnuFileNew"), [this] { New(); });
  On(&Entry("mnuFileLoad"), [this] { AskAndLoad(); });
  On(&Entry("mnuFileSave"), [this] { SaveEntries(); });
  On(&Entry("mnuFileSaveAs"), [this] { SaveAs(); });
  On(&Entry("mnuFilePrint"), [this] {
    if (TakeForm()) editor_->Print();
  });
  On(&Entry("mnuHelpAbout"), [this] { ShowAbout(shell_.dialogs); });
  connect(&Entry("mnuHelpEditor"), &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  if (expression_)
    connect(&Entry("mnuHelpParse"), &QAction::triggered, this,
            [this] { emit HelpRequested(QStringLiteral("Parse expressions")); });
}

void DefinitionForm::ConnectTestMenu() {
  for (const InstrumentTrial::Entry& entry : editor_->Trial().Entries())
    On(&Entry(entry.Control), [this, &entry] { Test(entry); });
  if (auto* const button = findChild<QPushButton*>(QStringLiteral("cmdParse"))) On(button, [this] { AskForTester(); });
  for (QRadioButton* const unit : findChildren<QRadioButton*>())
    if (unit->objectName().startsWith(QLatin1String("optUnit")))
      On(unit, [this] {
        FormEntries entries = Entries();
        editor_->ChangeUnits(entries);
        ShowEntries(entries);
      });
}

InstrumentKind DefinitionForm::Kind() const {
  return editor_->Kind();
}

QString DefinitionForm::HelpTopic() const {
  return QLatin1String(editor_->Texts().Topic);
}

void DefinitionForm::Show() {
  ShowEntries(editor_->Shown());
  ShowFileName();
  ShowRefused();
}

void DefinitionForm::ShowFileName() {
  SetCaption(QLatin1String(editor_->Texts().Caption) + ToQt(editor_->File()));
  ShowSaveTarget(Entry("mnuFileSave"), FileNameOnly(editor_->File()));
}

void DefinitionForm::ShowRefused() {
  const std::set<std::string> refused = editor_->Refused(Entries());
  for (QLineEdit* const box : findChildren<QLineEdit*>()) {
    box->setPalette({});
    if (!refused.contains(FromQt(box->objectName()))) continue;
    QPalette palette = box->palette();
    palette.setColor(QPalette::Text, HighlightRed(palette));
    box->setPalette(palette);
  }
}

void DefinitionForm::ShowTrial() {
  const InstrumentTrial& trial = editor_->Trial();
  for (const InstrumentTrial::Entry& entry : trial.Entries()) Entry(entry.Control).setEnabled(trial.Offers(entry));
  for (const char* const entry : {"mnuFileNew", "mnuFileLoad", "mnuFileSave", "mnuFileSaveAs", "mnuFilePrint"})
    Entry(entry).setEnabled(!trial.IsRunning());
  if (lamp_) lamp_->ShowRf(instruments_.sigGen.RfIsOn(), instruments_.sigGen.RfState() != Rf::Unknown);
  const char* const state = trial.IsUp() ? "The instrument is up; its front panel is locked until it is local again."
                                         : "The instrument is offline: Test, Init takes it up.";
  state_->setText(lastEntry_ + QLatin1String(state));
}

void DefinitionForm::EnableControls() {
  SetupForm::EnableControls();
  for (const QRadioButton* const unit : findChildren<QRadioButton*>())
    if (unit->objectName().startsWith(QLatin1String("optUnit")) && unit->isChecked())
      for (const char* const label : {"lblMaxLevUnit", "lblMinLevUnit"})
        if (auto* const shown = findChild<QLabel*>(QLatin1String(label)))
          shown->setText(unit->text().remove(QLatin1Char('&')));
}

bool DefinitionForm::TakeForm() {
  std::optional<EntryFailure> failure;
  const bool taken = editor_->Take(Entries(), failure);
  if (failure) PointOut(*this, *failure, shell_.dialogs);
  return taken;
}

void DefinitionForm::Test(const InstrumentTrial::Entry& entry) {
  if (!TakeForm()) return;
  if (!entry.Run) return AskForTester();
  InstrumentTrial& trial = editor_->Trial();
  const QString name = Entry(entry.Control).text().remove(QLatin1Char('&')).remove(QLatin1String("..."));
  state_->setText(name + QStringLiteral(" (Escape halts)"));
  for (const InstrumentTrial::Entry& other : trial.Entries()) Entry(other.Control).setEnabled(false);
  lastEntry_.clear();
  lastEntry_ = name + QLatin1String(trial.Run(entry) ? ": done. " : ": not done. ");
}

void DefinitionForm::AskForTester() {
  emit ParseTesterRequested(ToQt(editor_->Trial().LastAnswer()), expression_->text());
}

void DefinitionForm::TakeExpression(const QString& expression) {
  expression_->setText(expression);
}

void DefinitionForm::PressHalt() {
  editor_->Trial().Halt();
  if (!IsBusy()) ShowTrial();
}

void DefinitionForm::New() {
  if (MayDropEntries() && editor_->New()) Show();
}

void DefinitionForm::AskAndLoad() {
  const DefinitionTexts& texts = editor_->Texts();
  if (const auto path = AskFile(texts.LoadTitle, texts.Filter, datakind::kEquip, editor_->File()))
    LoadFile(ToQt(*path));
}

void DefinitionForm::LoadFile(const QString& path) {
  Guard("mnuFileLoad", [&] {
    if (!MayDropEntries() || !editor_->Load(FromQt(path))) return;
    Show();
    AddRecentFile(editor_->File());
    emit FileTaken();
  });
}

bool DefinitionForm::SaveEntries() {
  const std::string file = editor_->File();
  return file.empty() ? SaveAs() : SaveTo(file);
}

bool DefinitionForm::SaveAs() {
  const DefinitionTexts& texts = editor_->Texts();
  const auto path = AskSaveFile(texts.SaveTitle, texts.Filter, datakind::kEquip, editor_->File());
  return path && SaveTo(*path);
}

bool DefinitionForm::SaveTo(const std::string& path) {
  if (!TakeForm() || !MayReplace(editor_->LostBySave(path)) || !editor_->Save(path)) return false;
  Show();
  AddRecentFile(path);
  shell_.Saved(path);
  emit FileTaken();
  return true;
}

std::optional<FormEntries> DefinitionForm::SavedEntries() const {
  return editor_->Saved();
}

bool DefinitionForm::QueryUnload() {
  // A question may stand for hours, and RF may not stand with it.
  editor_->Trial().End();
  ShowTrial();
  if (!MayLeave()) return false;
  editor_->Leave();
  return true;
}

void DefinitionForm::Hurry() {
  shell_.delay.RequestHalt();
}

void DefinitionForm::CommandEnded() {
  SetupForm::CommandEnded();
  ShowTrial();
}

void DefinitionForm::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    PressHalt();
  else
    SetupForm::keyPressEvent(event);
}

}  // namespace hylden
