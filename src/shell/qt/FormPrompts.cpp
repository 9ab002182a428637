#include "shell/qt/FormPrompts.h"

#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
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

/// What the form calls a control: its label, or what a screen reader says where it has none, or two have the same;
/// without the unit where the range names it.
std::string NameOf(const QWidget& form, const QWidget& control, bool hasUnit) {
  QString name;
  QStringList labels;
  for (const QLabel* const label : form.findChildren<QLabel*>()) {
    if (!label->buddy()) continue;
    labels << label->text().remove(QLatin1Char('&'));
    if (label->buddy() == &control) name = labels.last();
  }
  if (name.isEmpty() || labels.count(name) > 1) name = control.accessibleName();
  if (hasUnit) name.remove(QRegularExpression(QStringLiteral("(, | in )[^ ]+$")));
  return FromQt(name.remove(QLatin1Char(':')));
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
  dialogs.Show({PromptText(failure, NameOf(form, *control, failure.RangeHasUnit)),
                {},
                MessageIcon::Exclamation,
                MessageButtons::RetryCancel});
}

}  // namespace hylden
