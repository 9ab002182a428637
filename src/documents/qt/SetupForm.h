#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "shell/qt/WorkingForm.h"

class QAbstractButton;
class QAction;
class QMenu;

namespace hylden {

class RecentFilesMenu;
class Shell;

/// What the forms of equipment, calibration and test have in common: commands, dialogs and a current file.
class SetupForm : public WorkingForm {
  Q_OBJECT

 protected:
  SetupForm(Shell& shell, QWidget* parent) : WorkingForm(parent), shell_(shell) {}

  /// Runs a command; what it could not foresee is reported, since nothing may leave an event handler.
  void Guard(const QObject* control, const std::function<void()>& command);
  /// Runs the command, guarded, whenever the control is chosen or pressed.
  void On(QAction* entry, std::function<void()> command);
  void On(QAbstractButton* button, std::function<void()> command);

  /// Loads what is chosen from the recent files of the kind or dropped on the form.
  void OfferFiles(QMenu* recent, std::string_view kind, const QString& suffix,
                  const std::function<void(const QString&)>& load);
  void AddRecentFile(const std::string& path);
  /// Names the current file at the entry that saves it.
  static void ShowSaveTarget(QAction& save, const std::string& path);

  /// Asks for a file, starting in its kind's data directory.
  std::optional<std::string> AskFile(const char* title, const char* filter, std::string_view kind);
  std::optional<std::string> AskListFile();

  Shell& shell_;

 private:
  RecentFilesMenu* recentFiles_ = nullptr;
};

}  // namespace hylden
