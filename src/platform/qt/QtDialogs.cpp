#include "platform/qt/QtDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <utility>

#include "platform/qt/CommandWindow.h"
#include "platform/qt/QtText.h"

namespace hylden {

namespace {

constexpr char kProgramTitle[] = "Hylden";
constexpr int kEndingMessageMs = 3000;
constexpr int kInputBoxWidth = 460;

/// Sees the keys on their way to a box.
class KeyWatch : public QObject {
 public:
  KeyWatch(QDialog& box, std::function<void()> onEscape) : QObject(&box), onEscape_(std::move(onEscape)) {
    box.installEventFilter(this);
    for (QAbstractButton* const button : box.findChildren<QAbstractButton*>()) button->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& press = static_cast<const QKeyEvent&>(*event);
    const bool answers = press.key() == Qt::Key_Return || press.key() == Qt::Key_Enter || press.key() == Qt::Key_Escape;
    // A key still held down from before the box opened would answer it unread: Enter may switch RF on, Escape may
    // throw away what was recorded.
    if (answers && press.isAutoRepeat()) return true;
    if (watched == parent() && press.key() == Qt::Key_Escape && onEscape_) onEscape_();
    return false;
  }

 private:
  std::function<void()> onEscape_;
};

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

struct ButtonSet {
  QMessageBox::StandardButtons buttons;
  QMessageBox::StandardButton onClose;  ///< what closing the box, or Escape, answers
};

ButtonSet ButtonsOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::OkCancel:
      return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel};
    case MessageButtons::YesNo:
      return {QMessageBox::Yes | QMessageBox::No, QMessageBox::No};
    case MessageButtons::YesNoCancel:
      return {QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Cancel};
    case MessageButtons::RetryCancel:
      return {QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Cancel};
    case MessageButtons::Ok:
      break;
  }
  return {QMessageBox::Ok, QMessageBox::Ok};
}

MessageAnswer AnswerOf(QMessageBox::StandardButton button) {
  switch (button) {
    case QMessageBox::Cancel:
      return MessageAnswer::Cancel;
    case QMessageBox::Yes:
      return MessageAnswer::Yes;
    case QMessageBox::No:
      return MessageAnswer::No;
    case QMessageBox::Retry:
      return MessageAnswer::Retry;
    default:
      return MessageAnswer::Ok;
  }
}

QString TitleOf(const std::string& title) {
  return title.empty() ? QString::fromLatin1(kProgramTitle) : ToQt(title);
}

/// The dialog goes when the scope ends, unless the window above which it stood has taken it along.
template <class Dialog>
class Owned {
 public:
  Owned() : dialog_(new Dialog(CommandWindow::ForBox())) {}
  ~Owned() { delete dialog_.data(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Dialog* operator->() const { return dialog_.data(); }
  Dialog& operator*() const { return *dialog_; }
  bool Alive() const { return !dialog_.isNull(); }

 private:
  QPointer<Dialog> dialog_;
};

/// The pointer over a box that waits for an answer, whatever the program is busy with.
class ArrowPointer {
 public:
  ArrowPointer() : busy_(QApplication::overrideCursor() != nullptr) {
    if (busy_) QApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~ArrowPointer() {
    if (busy_) QApplication::restoreOverrideCursor();
  }
  ArrowPointer(const ArrowPointer&) = delete;
  ArrowPointer& operator=(const ArrowPointer&) = delete;

 private:
  bool busy_;
};

/// "*.tst;*.txt" as Qt writes it, in both cases: on Linux "A.TST" is another name than "a.tst".
QString Patterns(const QString& patterns) {
  QStringList both;
  for (const QString& pattern : patterns.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    const QString one = pattern.trimmed();
    if (one == QLatin1String("*.*")) {
      both << QStringLiteral("*");
      continue;
    }
    both << one;
    if (one.toUpper() != one) both << one.toUpper();
  }
  return both.join(QLatin1Char(' '));
}

bool IsWildcard(const QString& fileName) {
  return fileName.isEmpty() || fileName.contains(QLatin1Char('*')) || fileName.contains(QLatin1Char('?'));
}

/// The suffix of a filter as Qt shows it, "Tables (*.los *.LOS)".
QString SuffixOfShown(const QString& filter) {
  const QString pattern =
      filter.section(QLatin1Char('('), -1).section(QLatin1Char(')'), 0, 0).section(QLatin1Char(' '), 0, 0);
  return pattern.startsWith(QLatin1String("*.")) ? pattern.mid(2) : QString();
}

/// The filter that this name, or pattern, belongs to; empty where there is none.
QString FilterOf(const QStringList& filters, const QString& name) {
  const QString suffix = name.section(QLatin1Char('.'), -1);
  for (const QString& filter : filters) {
    const bool isAll = suffix == QLatin1String("*") && filter.endsWith(QLatin1String("(*)"));
    if (isAll || (!suffix.isEmpty() && SuffixOfShown(filter).compare(suffix, Qt::CaseInsensitive) == 0)) return filter;
  }
  return {};
}

}  // namespace

QStringList QtFilters(std::string_view filter) {
  const QStringList parts = ToQt(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QString name = parts[i].section(QLatin1Char('('), 0, 0).trimmed();
    filters << QStringLiteral("%1 (%2)").arg(name, Patterns(parts[i + 1]));
  }
  return filters;
}

QString DefaultSuffix(std::string_view filter) {
  const QString pattern = ToQt(filter).section(QLatin1Char('|'), 1, 1).section(QLatin1Char(';'), 0, 0).trimmed();
  const QString suffix = pattern.section(QLatin1Char('.'), -1);
  return pattern.startsWith(QLatin1String("*.")) && suffix != QLatin1String("*") ? suffix : QString();
}

bool QtDialogs::Run(QDialog& dialog) {
  const ArrowPointer arrow;
  new KeyWatch(dialog, onEscape);
  return dialog.exec() == QDialog::Accepted;
}

MessageAnswer QtDialogs::Show(const Message& message) {
  const ButtonSet set = ButtonsOf(message.buttons);
  const QString text = ScreenText(message.text);
  Owned<QMessageBox> box;
  box->setWindowTitle(TitleOf(message.title));
  box->setTextFormat(Qt::PlainText);
  box->setText(text);
  box->setIcon(IconOf(message.icon));
  box->setStandardButtons(set.buttons);
  box->setEscapeButton(set.onClose);
  box->setAccessibleName(box->windowTitle());
  box->setAccessibleDescription(text);
  if (IsEnding() && message.buttons == MessageButtons::Ok)
    QTimer::singleShot(kEndingMessageMs, &*box, [this, shown = &*box] {
      if (IsEnding()) shown->reject();
    });
  Run(*box);
  if (!box.Alive() || !box->clickedButton()) return AnswerOf(set.onClose);
  return AnswerOf(box->standardButton(box->clickedButton()));
}

std::optional<std::string> QtDialogs::InputBox(const std::string& prompt, const std::string& title,
                                               const std::string& text) {
  Owned<QInputDialog> box;
  box->setWindowTitle(TitleOf(title));
  box->setInputMode(QInputDialog::TextInput);
  box->setLabelText(ScreenText(prompt));
  box->setTextValue(ToQt(text));
  box->setAccessibleName(box->windowTitle());
  box->setAccessibleDescription(ScreenText(prompt));
  // A comment is more than a word; and the title has to be read.
  box->resize(kInputBoxWidth, box->sizeHint().height());
  new KeyWatch(*box, {});
  if (box->exec() != QDialog::Accepted || !box.Alive()) return std::nullopt;
  return FromQt(box->textValue());
}

QString QtDialogs::StartOf(const FileRequest& request) const {
  QStringList places;
  const QFileInfo offered(ToQt(request.fileName));
  if (offered.isAbsolute()) places << offered.absolutePath();
  const QString asked = ToQt(request.directory);
  const auto last = lastUsed_.find(request.filter);
  if (last != lastUsed_.end() && last->second.asked == asked) places << last->second.chosen;
  places << asked;
  for (const QString& place : places)
    if (!place.isEmpty() && QDir(place).exists()) return place;
  return QDir::currentPath();
}

std::optional<std::string> QtDialogs::AskForFile(QFileDialog& dialog, const FileRequest& request) {
  const QPointer<QFileDialog> alive(&dialog);
  const QFileInfo offered(ToQt(request.fileName));
  dialog.setWindowTitle(TitleOf(request.title));
  dialog.setAccessibleName(dialog.windowTitle());
  dialog.setDirectory(StartOf(request));
  dialog.setNameFilters(QtFilters(request.filter));
  if (const QString filter = FilterOf(dialog.nameFilters(), offered.fileName()); !filter.isEmpty()) {
    dialog.selectNameFilter(filter);
    dialog.setDefaultSuffix(SuffixOfShown(filter));
  }
  // A name like "*.los" tells what to look for: it is no file's name.
  if (!IsWildcard(offered.fileName())) dialog.selectFile(offered.fileName());
  if (!Run(dialog) || !alive) return std::nullopt;
  const QStringList chosen = dialog.selectedFiles();
  if (chosen.isEmpty()) return std::nullopt;
  lastUsed_[request.filter] = {ToQt(request.directory), QFileInfo(chosen.first()).absolutePath()};
  return FromQt(QDir::toNativeSeparators(chosen.first()));
}

std::optional<std::string> QtDialogs::OpenFile(const FileRequest& request) {
  Owned<QFileDialog> dialog;
  dialog->setAcceptMode(QFileDialog::AcceptOpen);
  dialog->setFileMode(QFileDialog::ExistingFile);
  return AskForFile(*dialog, request);
}

std::optional<std::string> QtDialogs::SaveFile(const FileRequest& request) {
  Owned<QFileDialog> dialog;
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setFileMode(QFileDialog::AnyFile);
  dialog->setDefaultSuffix(DefaultSuffix(request.filter));
  QObject::connect(&*dialog, &QFileDialog::filterSelected, &*dialog,
                   [&](const QString& filter) { dialog->setDefaultSuffix(SuffixOfShown(filter)); });
  const auto chosen = AskForFile(*dialog, request);
  if (!chosen) return std::nullopt;
  if (IsWildcard(QFileInfo(ToQt(*chosen)).fileName())) {
    Tell("A file can't be saved under a name with * or ?:\r\n" + *chosen, MessageIcon::Exclamation);
    return std::nullopt;
  }
  return WithOnlySuffix(*chosen, request);
}

/// The dialog takes what stands behind a dot for the suffix, as in "level 1.5"; where there is only one, it is missing.
std::optional<std::string> QtDialogs::WithOnlySuffix(const std::string& path, const FileRequest& request) {
  const QString suffix = QLatin1Char('.') + DefaultSuffix(request.filter);
  const bool only = suffix.size() > 1 && ToQt(request.filter).count(QLatin1Char('|')) == 1;
  if (!only || ToQt(path).endsWith(suffix, Qt::CaseInsensitive)) return path;
  const QString whole = ToQt(path) + suffix;
  if (!QFileInfo::exists(whole)) return FromQt(whole);
  const bool replace = Show({FromQt(whole) + " already exists.\nDo you want to replace it?", request.title,
                             MessageIcon::Exclamation, MessageButtons::YesNo}) == MessageAnswer::Yes;
  return replace ? std::optional(FromQt(whole)) : std::nullopt;
}

void QtDialogs::DefaultPointer() {
  while (QApplication::overrideCursor()) QApplication::restoreOverrideCursor();
}

void QtDialogs::CloseBoxes() {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (QWidget* window : windows) {
    auto* dialog = qobject_cast<QDialog*>(window);
    if (dialog && dialog->isVisible() && dialog->isModal()) dialog->reject();
  }
}

}  // namespace hylden
