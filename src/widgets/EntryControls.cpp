#include "widgets/EntryControls.h"

#include <QLineEdit>
#include <QRadioButton>

#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "widgets/PathLabel.h"

namespace hylden {

void SetSelected(QAbstractButton& button, bool selected) {
  const bool exclusive = button.autoExclusive();
  button.setAutoExclusive(false);
  button.setChecked(selected);
  button.setAutoExclusive(exclusive);
}

void EnableAll(bool enabled, std::initializer_list<QWidget*> controls) {
  for (QWidget* const control : controls) control->setEnabled(enabled);
}

void EntryShower::operator()(PathLabel& label, const std::string& path) const {
  FitPathLabel(path, label);
}

void EntryShower::operator()(QLineEdit& box, const std::string& text) const {
  box.setText(ToQt(text));
}

void EntryShower::operator()(QAbstractButton& button, bool chosen) const {
  SetSelected(button, chosen);
}

void EntryShower::operator()(Options options, std::int32_t code) const {
  std::int32_t option = 0;
  for (QRadioButton* const button : options) SetSelected(*button, option++ == code);
}

void EntryReader::operator()(const PathLabel& label, std::string& path) const {
  path = label.Path();
}

void EntryReader::operator()(const QLineEdit& box, std::string& text) const {
  text = FromQt(box.text());
}

void EntryReader::operator()(const QAbstractButton& button, bool& chosen) const {
  chosen = button.isChecked();
}

void EntryReader::operator()(Options options, std::int32_t& code) const {
  code = 0;
  for (const QRadioButton* const button : options) {
    if (button->isChecked()) return;
    ++code;
  }
  if (NoChoice) code = *NoChoice;
}

void EntryComparer::operator()(const PathLabel& label, const std::string& path) const {
  AllSame = AllSame && label.Path() == path;
}

void EntryComparer::operator()(const QLineEdit& box, const std::string& text) const {
  AllSame = AllSame && SameEntry(FromQt(box.text()), text);
}

void EntryComparer::operator()(const QAbstractButton& button, bool chosen) const {
  AllSame = AllSame && button.isChecked() == chosen;
}

void EntryComparer::operator()(Options options, std::int32_t code) const {
  std::int32_t option = 0;
  for (const QRadioButton* const button : options) (*this)(*button, option++ == code);
}

}  // namespace hylden
