#include "shell/qt/SetupForm.h"

#include <QAbstractButton>
#include <QAction>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>

#include "platform/qt/CommandWindow.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "text/ExistingPath.h"
#include "text/TextFile.h"
#include "widgets/EntryControls.h"
#include "widgets/FileDrop.h"
#include "widgets/PathLabel.h"
#include "widgets/RecentFilesMenu.h"

namespace hylden {

namespace {

/// A file that was named without its directory lies below the working directory; "*.los" is no file.
std::string WholePath(const std::string& path) {
  return path.empty() || path.starts_with('*') ? path : FromQt(QFileInfo(ToQt(ExistingPath(path))).absoluteFilePath());
}

}  // namespace

FormEntries SetupForm::Entries() const {
  FormEntries entries = fields_;
  ReadEntries(*this, entries);
  return entries;
}

void SetupForm::ShowEntries(const FormEntries& entries) {
  const bool isFirst = fields_.begin() == fields_.end();
  fields_ = entries;
  hylden::ShowEntries(*this, entries);
  EnableControls();
  if (!isFirst) return;
  for (const auto& [name, text] : entries)
    if (auto* const button = findChild<QAbstractButton*>(ToQt(name)))
      connect(button, &QAbstractButton::clicked, this, &SetupForm::EnableControls);
}

void SetupForm::EnableControls() {
  hylden::EnableControls(*this, UsedNow());
}

void SetupForm::ApplyRule(QAbstractButton* button, void (*rule)(FormEntries&)) {
  On(button, [this, rule] {
    FormEntries entries = Entries();
    rule(entries);
    ShowEntries(entries);
  });
}

void SetupForm::OfferFiles(QMenu* recent, std::string_view kind, const QString& suffix,
                           const std::function<void(const QString&)>& load) {
  recentFiles_ = new RecentFilesMenu(recent, shell_.settings, kind);
  // A drop comes from the event loop, maybe that of a box which has opened meanwhile.
  const auto command = [this, recent, load](const QString& path) {
    if (!IsBusy()) Guard(FromQt(recent->objectName()), [&] { load(path); });
  };
  connect(recentFiles_, &RecentFilesMenu::Chosen, this, command);
  new FileDrop(this, suffix, command);
}

void SetupForm::AddRecentFile(const std::string& path) {
  recentFiles_->Add(path);
}

void SetupForm::ShowSaveTarget(QAction& save, const std::string& path) {
  const QString name = ToQt(path).replace(QLatin1Char('&'), QLatin1String("&&"));
  save.setText(name.isEmpty() ? QStringLiteral("&Save") : QStringLiteral("&Save ") + name);
}

void SetupForm::SetCaption(const QString& caption) {
  caption_ = caption;
  ShowMark();
}

void SetupForm::WatchEntries() {
  for (const QLineEdit* const box : findChildren<QLineEdit*>())
    connect(box, &QLineEdit::textChanged, this, &SetupForm::ShowMark);
  for (const QAbstractButton* const button : findChildren<QAbstractButton*>())
    if (button->isCheckable()) connect(button, &QAbstractButton::toggled, this, &SetupForm::ShowMark);
  ShowMark();
}

void SetupForm::ShowMark() {
  if (caption_.isEmpty() || IsBusy()) return;  // half of what is being loaded is no change
  setWindowTitle(FittedCaption(caption_) + (HasUnsaved() ? QStringLiteral("*") : QString()));
}

bool SetupForm::HasUnsaved() const {
  const std::optional<FormEntries> saved = SavedEntries();
  return saved && !(*saved == Entries());
}

void SetupForm::KeepUnsaved() {
  kept_.reset();
  if (HasUnsaved()) kept_ = Entries();
}

bool SetupForm::MayDropEntries() {
  if (!HasUnsaved()) return true;
  const MessageAnswer answer =
      shell_.dialogs.Show({std::string(what_) + " has changes that are not saved.\r\nSave them?", saveTitle_,
                           MessageIcon::Question, MessageButtons::YesNoCancel});
  return answer == MessageAnswer::Yes ? SaveEntries() : answer == MessageAnswer::No;
}

bool SetupForm::MayReplace(const std::string& loss) {
  return loss.empty() || shell_.dialogs.Show({loss + "\r\nReplace it?", saveTitle_, MessageIcon::Exclamation,
                                              MessageButtons::YesNo}) == MessageAnswer::Yes;
}

std::optional<std::string> SetupForm::AskFile(const char* title, const char* filter, std::string_view kind,
                                              const std::string& loaded) {
  return shell_.dialogs.OpenFile({title, filter, shell_.settings.GetDataDir(kind), WholePath(loaded)});
}

std::optional<std::string> SetupForm::AskListFile(const std::string& loaded) {
  return AskFile("Select frequency list file", "Frequency List (*.lst)|*.lst|All Files|*.*", datakind::kFreqList,
                 loaded);
}

std::optional<std::string> SetupForm::AskSaveFile(const char* title, const char* filter, std::string_view kind,
                                                  const std::string& loaded) {
  return shell_.dialogs.SaveFile({title, filter, shell_.settings.GetDataDir(kind), WholePath(loaded)});
}

}  // namespace hylden
