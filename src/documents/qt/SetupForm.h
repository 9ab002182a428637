#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Dialogs.h"
#include "shell/qt/WorkingForm.h"

class QAction;
class QMenu;

namespace hylden {

class RecentFilesMenu;

/// What the forms of equipment, calibration and test have in common: commands, dialogs and a current file.
class SetupForm : public WorkingForm {
  Q_OBJECT

 protected:
  SetupForm(Shell& shell, QWidget* parent) : WorkingForm(shell, parent) {}

  /// Loads what is chosen from the recent files of the kind or dropped on the form.
  void OfferFiles(QMenu* recent, std::string_view kind, const QString& suffix,
                  const std::function<void(const QString&)>& load);
  void AddRecentFile(const std::string& path);
  /// Names the current file at the entry that saves it.
  static void ShowSaveTarget(QAction& save, const std::string& path);

  /// The window's caption; a "*" stands behind it while the form holds what is not saved.
  void SetCaption(const QString& caption);
  /// From now on the mark follows every box, option and tick of the form.
  void WatchEntries();
  void ShowMark();
  /// What is on the form differs from what was loaded or saved last.
  virtual bool HasUnsaved() const { return false; }
  /// The command that saves. @return false when it did not come to a file
  virtual bool SaveEntries() { return true; }
  /// Asks what becomes of unsaved entries before they are dropped: saved, dropped, or the command is given up.
  /// @param title  of the box, "Save Equipment"
  /// @param what   has not been saved, "The equipment"
  /// @return whether the command may go on
  bool MayDrop(const char* title, const std::string& what);

  /// Asks for a file, starting beside the one that is loaded, else in the kind's data directory.
  std::optional<std::string> AskFile(const char* title, const char* filter, std::string_view kind,
                                     const std::string& loaded);
  std::optional<std::string> AskListFile(const std::string& loaded);
  /// The same for a file to save, which may be another.
  std::optional<std::string> AskSaveFile(const char* title, const char* filter, std::string_view kind,
                                         const std::string& loaded);

 private:
  void CommandEnded() override { ShowMark(); }

  RecentFilesMenu* recentFiles_ = nullptr;
  QString caption_;
};

}  // namespace hylden
