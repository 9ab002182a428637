#include "widgets/EntryControls.h"

#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <stdexcept>

#include "platform/qt/QtText.h"
#include "widgets/PathLabel.h"

namespace hylden {

namespace {

QWidget& ControlOf(const QWidget& form, const std::string& name) {
  auto* const control = form.findChild<QWidget*>(ToQt(name));
  if (!control) throw std::logic_error("no control " + name);
  return *control;
}

}  // namespace

void SetSelected(QAbstractButton& button, bool selected) {
  const bool exclusive = button.autoExclusive();
  button.setAutoExclusive(false);
  button.setChecked(selected);
  button.setAutoExclusive(exclusive);
}

void ShowEntries(QWidget& form, const FormEntries& entries) {
  for (const auto& [name, text] : entries) {
    QWidget& control = ControlOf(form, name);
    if (auto* const box = qobject_cast<QLineEdit*>(&control)) box->setText(ToQt(text));
    if (auto* const label = qobject_cast<PathLabel*>(&control)) FitPathLabel(text, *label);
    if (auto* const button = qobject_cast<QAbstractButton*>(&control)) SetSelected(*button, entries.IsTicked(name));
  }
}

void ReadEntries(const QWidget& form, FormEntries& entries) {
  for (auto& [name, text] : entries) {
    const QWidget& control = ControlOf(form, name);
    if (const auto* const box = qobject_cast<const QLineEdit*>(&control)) text = FromQt(box->text());
    if (const auto* const label = qobject_cast<const PathLabel*>(&control)) text = label->Path();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&control))
      entries.Tick(name, button->isChecked());
  }
}

void EnableControls(QWidget& form, const UsedControls& used) {
  for (const auto& [name, inUse] : used) {
    QWidget& control = ControlOf(form, name);
    control.setEnabled(inUse);
    for (QLabel* const label : form.findChildren<QLabel*>())
      if (label->buddy() == &control) label->setEnabled(inUse);
  }
}

}  // namespace hylden
