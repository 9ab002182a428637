#include "documents/qt/SetupForm.h"

#include <QAbstractButton>
#include <QAction>
#include <exception>
#include <utility>

#include "platform/qt/FileDrop.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/RecentFilesMenu.h"

namespace hylden {

void SetupForm::Guard(const QObject* control, const std::function<void()>& command) {
  try {
    command();
  } catch (const std::exception& error) {
    shell_.ReportError(error, FromQt(objectName() + QLatin1Char('.') + control->objectName()));
  }
}

void SetupForm::On(QAction* entry, std::function<void()> command) {
  connect(entry, &QAction::triggered, this, [this, entry, run = std::move(command)] { Guard(entry, run); });
}

void SetupForm::On(QAbstractButton* button, std::function<void()> command) {
  connect(button, &QAbstractButton::clicked, this, [this, button, run = std::move(command)] { Guard(button, run); });
}

void SetupForm::OfferFiles(QMenu* recent, std::string_view kind, const QString& suffix,
                           const std::function<void(const QString&)>& load) {
  recentFiles_ = new RecentFilesMenu(recent, shell_.settings, kind);
  connect(recentFiles_, &RecentFilesMenu::Chosen, this, load);
  new FileDrop(this, suffix, load);
}

void SetupForm::AddRecentFile(const std::string& path) {
  recentFiles_->Add(path);
}

void SetupForm::ShowSaveTarget(QAction& save, const std::string& path) {
  const QString name = ToQt(path).replace(QLatin1Char('&'), QLatin1String("&&"));
  save.setText(name.isEmpty() ? QStringLiteral("&Save") : QStringLiteral("&Save ") + name);
}

std::optional<std::string> SetupForm::AskFile(const char* title, const char* filter, std::string_view kind) {
  return shell_.dialogs.OpenFile({title, filter, shell_.settings.GetDataDir(kind)});
}

std::optional<std::string> SetupForm::AskListFile() {
  return AskFile("Select frequency list file", "Frequency List (*.lst)|*.lst|All Files|*.*", datakind::kFreqList);
}

}  // namespace hylden
