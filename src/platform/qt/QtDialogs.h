#pragma once

#include <QStringList>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "platform/Dialogs.h"

class QDialog;
class QFileDialog;

namespace hylden {

/// Message boxes and dialogs on the screen, above the window whose command runs.
/// A file dialog begins beside the file that it is asked for; without one, where a file of its filter was chosen last
/// in this session, unless another directory is configured since; else in the directory of the request.
class QtDialogs : public Dialogs {
 public:
  /// Called when Escape is pressed in a box, before the box closes: a run takes it as Halt. In an input box Escape just
  /// leaves the text.
  std::function<void()> onEscape;
  /// Whether the program is being ended: a plain message then closes by itself after a while. Questions still wait for
  /// their answer.
  std::function<bool()> isEnding;

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& text = {}) override;
  std::optional<std::string> OpenFile(const FileRequest& request) override;
  std::optional<std::string> SaveFile(const FileRequest& request) override;
  void DefaultPointer() override;

  /// Every box on the screen closes as by its close button.
  void CloseBoxes();

 private:
  struct LastUsed {
    QString asked;   ///< the directory of the request
    QString chosen;  ///< where the file was
  };

  bool Run(QDialog& dialog);
  bool IsEnding() const { return isEnding && isEnding(); }
  std::optional<std::string> WithOnlySuffix(const std::string& path, const FileRequest& request);
  std::optional<std::string> AskForFile(QFileDialog& dialog, const FileRequest& request);

  QString StartOf(const FileRequest& request) const;

  std::map<std::string, LastUsed> lastUsed_;  ///< by filter
};

/// Filters for a Qt file dialog of a common-dialog filter: "Definitions (*.tst)|*.tst|All Files|*.*" becomes
/// {"Definitions (*.tst *.TST)", "All Files (*)"}.
QStringList QtFilters(std::string_view filter);

/// The suffix that a new file gets when none is typed: that of the first pattern ("tst"), empty when it has none.
QString DefaultSuffix(std::string_view filter);

}  // namespace hylden
