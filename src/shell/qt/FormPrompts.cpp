#include "shell/qt/FormPrompts.h"

#include <QLineEdit>

#include "platform/Dialogs.h"

namespace hylden {

namespace {

void Prompt(QLineEdit& box, Dialogs& dialogs, const char* text) {
  if (box.isVisible()) {
    box.setFocus();
    box.selectAll();
  }
  // The answer changes nothing: the command stops either way and the operator edits the text.
  dialogs.Show({text, {}, MessageIcon::Exclamation, MessageButtons::RetryCancel});
}

}  // namespace

void NotANumberPrompt(QLineEdit& box, Dialogs& dialogs) {
  Prompt(box, dialogs, kNotANumberText);
}

void OutOfRangePrompt(QLineEdit& box, Dialogs& dialogs) {
  Prompt(box, dialogs, kOutOfRangeText);
}

}  // namespace hylden
