#pragma once

#include <QStringList>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Dialogs.h"

class QDialog;
class QFileDialog;

namespace hylden {

/// Message boxes and dialogs on the screen, above the active window.
class QtDialogs : public Dialogs {
 public:
  /// Called when Escape is pressed in any box, before the box closes: a run takes it as Halt.
  std::function<void()> onEscape;

  MessageAnswer Show(const Message& message) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& text = {}) override;
  std::optional<std::string> OpenFile(const FileRequest& request) override;
  std::optional<std::string> SaveFile(const FileRequest& request) override;
  void DefaultPointer() override;

  /// The program has been asked to end: every box on the screen closes as by its close button, and from now on a plain
  /// message closes by itself after a while. Questions still wait for their answer.
  void BeginEnding();

 private:
  bool Run(QDialog& dialog);
  std::optional<std::string> WithOnlySuffix(const std::string& path, const FileRequest& request);
  std::optional<std::string> AskForFile(QFileDialog& dialog, const FileRequest& request);

  bool ending_ = false;
};

/// Filters for a Qt file dialog of a common-dialog filter: "Definitions (*.tst)|*.tst|All Files|*.*" becomes
/// {"Definitions (*.tst *.TST)", "All Files (*)"}.
QStringList QtFilters(std::string_view filter);

/// The suffix that a new file gets when none is typed: that of the first pattern ("tst"), empty when it has none.
QString DefaultSuffix(std::string_view filter);

}  // namespace hylden
