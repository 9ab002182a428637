#include "shell/qt/FormPrompts.h"

#include <QLineEdit>
#include <QTabWidget>

#include "platform/Dialogs.h"
#include "platform/qt/QtText.h"
#include "shell/FormEntries.h"

namespace hylden {

namespace {

void TurnTo(const QWidget& control, QTabWidget& tabs) {
  for (int page = 0; page < tabs.count(); ++page)
    if (tabs.widget(page)->isAncestorOf(&control)) tabs.setCurrentIndex(page);
}

}  // namespace

void PointOut(QWidget& form, const EntryFailure& failure, Dialogs& dialogs) {
  auto* const control = form.findChild<QWidget*>(ToQt(failure.Control));
  if (!control) return;
  if (auto* const tabs = form.findChild<QTabWidget*>(QStringLiteral("tabSetup"))) TurnTo(*control, *tabs);
  if (control->isVisible() && control->focusPolicy() != Qt::NoFocus) control->setFocus();
  if (failure.Reason == EntryFailure::Kind::Message) return dialogs.Tell(failure.Text);
  if (auto* const box = qobject_cast<QLineEdit*>(control); box && box->isVisible()) box->selectAll();
  // The answer changes nothing: the command stops either way and the operator edits the text.
  const bool isNumber = failure.Reason == EntryFailure::Kind::OutOfRange;
  dialogs.Show(
      {isNumber ? kOutOfRangeText : kNotANumberText, {}, MessageIcon::Exclamation, MessageButtons::RetryCancel});
}

}  // namespace hylden
