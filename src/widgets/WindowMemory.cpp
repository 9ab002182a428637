#include "widgets/WindowMemory.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QHeaderView>
#include <QSplitter>
#include <QTableView>
#include <algorithm>
#include <map>

#include "platform/qt/Later.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {

constexpr const char *kSize = "Size", *kPosition = "Position", *kMaximised = "max";

std::string ListText(const QList<int>& numbers) {
  QStringList texts;
  for (const int number : numbers) texts << QString::number(number);
  return FromQt(texts.join(QLatin1Char(',')));
}

/// Empty unless every part of the text is a number above or equal to 0.
QList<int> ListOf(const std::string& text) {
  QList<int> numbers;
  for (const QString& part : ToQt(text).split(QLatin1Char(','))) {
    bool isNumber = false;
    numbers << part.toInt(&isNumber);
    if (!isNumber || numbers.last() < 0) return {};
  }
  return numbers;
}

/// Those whose width the operator can change.
QList<int> ColumnWidths(const QTableView& table) {
  const QHeaderView& header = *table.horizontalHeader();
  QList<int> widths;
  for (int column = 0; column < header.count(); ++column)
    if (header.sectionResizeMode(column) == QHeaderView::Interactive) widths << header.sectionSize(column);
  return widths;
}

void SetColumnWidths(QTableView& table, const QList<int>& widths) {
  if (widths.size() != ColumnWidths(table).size()) return;
  qsizetype next = 0;
  for (int column = 0; column < table.horizontalHeader()->count(); ++column)
    if (table.horizontalHeader()->sectionResizeMode(column) == QHeaderView::Interactive)
      table.setColumnWidth(column, widths[next++]);
}

/// A choice among the entries of a menu.
std::string NameOf(const QActionGroup& choice) {
  return choice.parent() ? FromQt(choice.parent()->objectName()) : std::string();
}

}  // namespace

WindowMemory::WindowMemory(Shell& shell, QWidget& window, Keeps keeps)
    : QObject(&window), shell_(shell), window_(window), keeps_(keeps) {
  window.installEventFilter(this);
  Restore();
}

std::string WindowMemory::Section() const {
  return FromQt(window_.objectName());
}

WindowMemory::Values WindowMemory::Now() const {
  const QSize size = window_.size();
  Values values{{kSize, window_.isMaximized() ? kMaximised : ListText({size.width(), size.height()})}};
  if (keeps_ == Keeps::SizeAndPlace) values.emplace_back(kPosition, WindowPosition(window_));
  for (const QSplitter* const splitter : window_.findChildren<QSplitter*>())
    values.emplace_back(FromQt(splitter->objectName()), ListText(splitter->sizes()));
  for (const QTableView* const table : window_.findChildren<QTableView*>())
    values.emplace_back(FromQt(table->objectName()), ListText(ColumnWidths(*table)));
  for (const QActionGroup* const choice : window_.findChildren<QActionGroup*>())
    if (choice->isExclusive() && choice->checkedAction())
      values.emplace_back(NameOf(*choice), FromQt(choice->checkedAction()->objectName()));
  std::erase_if(values, [](const auto& value) {
    return value.first.empty() || value.second.empty() || !clsSetting::Fits(value.second);
  });
  return values;
}

void WindowMemory::Restore() {
  if (shell_.InstrumentsClaimed()) return;
  const Values kept = shell_.settings.GetAll(Section());
  const std::map<std::string, std::string> values(kept.begin(), kept.end());
  const auto value = [&](const std::string& key) {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
  };
  if (const QList<int> size = ListOf(value(kSize)); size.size() == 2) window_.resize(size[0], size[1]);
  if (keeps_ == Keeps::SizeAndPlace) RestorePlace(value(kPosition), window_);
  if (value(kSize) == kMaximised) window_.setWindowState(Qt::WindowMaximized);
  for (QSplitter* const splitter : window_.findChildren<QSplitter*>())
    if (const QList<int> sizes = ListOf(value(FromQt(splitter->objectName()))); sizes.size() == splitter->count())
      splitter->setSizes(sizes);
  for (QTableView* const table : window_.findChildren<QTableView*>())
    SetColumnWidths(*table, ListOf(value(FromQt(table->objectName()))));
  for (const QActionGroup* const choice : window_.findChildren<QActionGroup*>())
    for (QAction* const entry : choice->actions())
      if (choice->isExclusive() && !entry->isChecked() && !entry->objectName().isEmpty() &&
          FromQt(entry->objectName()) == value(NameOf(*choice)))
        entry->trigger();
}

bool WindowMemory::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &window_ || event->spontaneous()) return false;
  if (event->type() == QEvent::Show)
    Later(this, [this] {
      if (window_.isVisible()) opened_ = Now();
    });
  if (event->type() == QEvent::Hide) Remember();
  return false;
}

void WindowMemory::Remember() {
  if (opened_.empty() || shell_.InstrumentsClaimed()) return;
  Values changed;
  for (const auto& value : Now())
    if (std::find(opened_.begin(), opened_.end(), value) == opened_.end()) changed.push_back(value);
  opened_.clear();
  if (!changed.empty()) shell_.settings.SaveQuietly(Section(), changed);
}

}  // namespace hylden
