#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Dialogs.h"
#include "shell/FormFields.h"
#include "shell/qt/WorkingForm.h"

class QAction;
class QMenu;

namespace hylden {

class RecentFilesMenu;

/// What forms that edit a record have in common: its entries, commands, dialogs and a current file.
class SetupForm : public WorkingForm {
  Q_OBJECT

 protected:
  /// @param saveTitle  of the box that asks whether to save, "Save Equipment"
  /// @param what       has not been saved, "The equipment"
  SetupForm(Shell& shell, QWidget* parent, const char* saveTitle, const char* what)
      : WorkingForm(shell, parent), saveTitle_(saveTitle), what_(what) {}

  /// The form's fields as they stand on it, from the first ShowEntries on.
  FormEntries Entries() const;
  /// Shows entries, and enables what is in use with them. A click on an option or tick enables again.
  void ShowEntries(const FormEntries& entries);
  /// After a click on the button the rule changes the other entries.
  void ApplyRule(QAbstractButton* button, void (*rule)(FormEntries&));
  /// What can be used with these entries, of the controls that hang on a condition.
  virtual UsedControls UsedNow() const { return {}; }
  /// The same for what no list tells.
  virtual void EnableControls();
  void CommandEnded() override { ShowMark(); }

  /// Loads what is chosen from the recent files of the kind or dropped on the form.
  /// @param suffix  of the files that may be dropped; several are separated by blanks
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
  /// What was loaded or saved last; nothing where nothing is saved.
  virtual std::optional<FormEntries> SavedEntries() const { return std::nullopt; }
  /// What is on the form differs from it.
  virtual bool HasUnsaved() const;
  /// The command that saves. @return false when it did not come to a file
  virtual bool SaveEntries() { return true; }
  /// Asks what becomes of unsaved entries before they are dropped: saved, dropped, or the command is given up.
  /// @return whether the command may go on
  bool MayDropEntries();
  /// The same when the form is left. What was unsaved already when it opened was asked about before, and leaving the
  /// form costs none of it.
  bool MayLeave() { return (kept_ && *kept_ == Entries()) || MayDropEntries(); }
  /// Asks before a save replaces what it does not keep. @param loss  what that is; empty: nothing
  bool MayReplace(const std::string& loss);
  /// The form has opened, or was loaded or saved.
  void KeepUnsaved();
  void ForgetKept() { kept_.reset(); }

  /// Asks for a file, starting beside the one that is loaded, else in the kind's data directory. Where none is loaded,
  /// a pattern ("*.los") chooses among the filters.
  std::optional<std::string> AskFile(const char* title, const char* filter, std::string_view kind,
                                     const std::string& loaded);
  std::optional<std::string> AskListFile(const std::string& loaded);
  /// The same for a file to save, which may be another.
  std::optional<std::string> AskSaveFile(const char* title, const char* filter, std::string_view kind,
                                         const std::string& loaded);

 private:
  RecentFilesMenu* recentFiles_ = nullptr;
  QString caption_;
  const char *saveTitle_, *what_;
  FormEntries fields_;
  std::optional<FormEntries> kept_;
};

}  // namespace hylden
