#include "shell/qt/frmHelp.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBlock>
#include <QTreeWidgetItemIterator>
#include <QUrl>

#include "platform/qt/QtText.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"
#include "ui_frmHelp.h"

namespace hylden {

namespace {

constexpr int kPlaceRole = Qt::UserRole;
constexpr int kContentsLevels = 3;
constexpr int kHeadingGap = 4;  // above a heading that was gone to, pixels

/// A topic as it is compared: lower case, blanks single and none beside a colon.
QString TopicKey(const QString& topic) {
  QString key = topic.simplified().toLower();
  return key.replace(QLatin1String(": "), QLatin1String(":")).replace(QLatin1String(" :"), QLatin1String(":"));
}

/// The anchor that a link to a heading uses: lower case, hyphens for blanks, no punctuation.
QString AnchorOf(const QString& heading) {
  QString anchor;
  for (const QChar character : heading.toLower()) {
    if (character.isLetterOrNumber() || character == QLatin1Char('_')) anchor += character;
    if (character.isSpace() || character == QLatin1Char('-')) anchor += QLatin1Char('-');
  }
  return anchor;
}

}  // namespace

frmHelp::frmHelp(QWidget* parent) : QMainWindow(parent), ui_(std::make_unique<Ui::frmHelp>()) {
  ui_->setupUi(this);
  ui_->splHelp->setSizes({250, 650});
  ui_->splHelp->setStretchFactor(1, 1);
  const auto visit = [this](const QTreeWidgetItem* entry) { Visit(entry->data(0, kPlaceRole).toInt()); };
  connect(ui_->trvContents, &QTreeWidget::itemClicked, this, visit);
  connect(ui_->trvContents, &QTreeWidget::itemActivated, this, visit);
  connect(ui_->txtHelp, &QTextBrowser::anchorClicked, this, &frmHelp::Follow);
  connect(ui_->txtSearch, &QLineEdit::returnPressed, this, &frmHelp::FindNext);
  connect(ui_->txtSearch, &QLineEdit::textChanged, this, &frmHelp::MarkPlaces);
  connect(ui_->cmdFind, &QPushButton::clicked, this, &frmHelp::FindNext);
  connect(ui_->cmdBack, &QPushButton::clicked, this, [this] { Step(-1); });
  connect(ui_->cmdForward, &QPushButton::clicked, this, [this] { Step(1); });
  const auto onKeys = [this](const QKeySequence& keys, void (frmHelp::*does)()) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, does);
  };
  onKeys(QKeySequence(Qt::CTRL | Qt::Key_F), &frmHelp::GoToSearch);
  onKeys(QKeySequence(Qt::SHIFT | Qt::Key_F3), &frmHelp::FindPrevious);
  connect(ui_->txtHelp->verticalScrollBar(), &QScrollBar::valueChanged, this, &frmHelp::MarkChapter);
  Step(0);
}

frmHelp::~frmHelp() = default;

bool frmHelp::LoadFile(const QString& path) {
  try {
    ui_->txtHelp->document()->setMarkdown(ToQt(ReadTextFile(FromQt(path))));
  } catch (const RuntimeError&) {
    return false;
  }
  FillContents();
  return true;
}

void frmHelp::FillContents() {
  ui_->trvContents->clear();
  topics_.clear();
  anchors_.clear();
  lastOfLevel_.fill(nullptr, kContentsLevels + 1);
  for (QTextBlock block = ui_->txtHelp->document()->begin(); block.isValid(); block = block.next())
    if (const int level = block.blockFormat().headingLevel()) AddHeading(block.text(), level, block.position());
  ui_->trvContents->expandToDepth(1);
}

void frmHelp::AddHeading(const QString& heading, int level, int position) {
  if (!topics_.contains(TopicKey(heading))) topics_.insert(TopicKey(heading), position);
  anchors_.insert(AnchorOf(heading), position);
  if (level > kContentsLevels) return;
  QTreeWidgetItem* above = nullptr;
  for (int i = level - 1; i > 0 && !above; --i) above = lastOfLevel_[i];
  auto* const entry = new QTreeWidgetItem(QStringList(heading));
  entry->setData(0, kPlaceRole, position);
  if (above)
    above->addChild(entry);
  else
    ui_->trvContents->addTopLevelItem(entry);
  lastOfLevel_[level] = entry;
  for (int i = level + 1; i <= kContentsLevels; ++i) lastOfLevel_[i] = nullptr;
}

void frmHelp::OpenTopic(const QString& topic) {
  Visit(topics_.value(TopicKey(topic), 0));
}

void frmHelp::Visit(int position) {
  if (current_ >= 0 && visited_[current_] == position) return Show(position);
  visited_.resize(current_ + 1);
  visited_ << position;
  Step(1);
}

void frmHelp::Step(int by) {
  if (current_ + by >= 0 && current_ + by < visited_.size()) {
    current_ += by;
    Show(visited_[current_]);
  }
  ui_->cmdBack->setEnabled(current_ > 0);
  ui_->cmdForward->setEnabled(current_ + 1 < visited_.size());
}

void frmHelp::Show(int position) {
  QTextCursor cursor(ui_->txtHelp->document());
  cursor.setPosition(position);
  ui_->txtHelp->setTextCursor(cursor);
  // The heading goes to the top of the window, not just into sight.
  QScrollBar* const bar = ui_->txtHelp->verticalScrollBar();
  bar->setValue(bar->value() + ui_->txtHelp->cursorRect(cursor).top() - kHeadingGap);
  for (QTreeWidgetItemIterator entry(ui_->trvContents); *entry; ++entry)
    if ((*entry)->data(0, kPlaceRole).toInt() == position) ui_->trvContents->setCurrentItem(*entry);
}

void frmHelp::Follow(const QUrl& link) {
  if (!link.isRelative()) {
    QDesktopServices::openUrl(link);
    return;
  }
  const auto anchor = anchors_.constFind(link.fragment().toLower());
  if (anchor != anchors_.cend()) Visit(*anchor);
}

void frmHelp::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  GoToSearch();
}

void frmHelp::GoToSearch() {
  ui_->txtSearch->setFocus();
  ui_->txtSearch->selectAll();
}

void frmHelp::FindNext() {
  Find({}, QTextCursor::Start);
}

void frmHelp::FindPrevious() {
  Find(QTextDocument::FindBackward, QTextCursor::End);
}

/// Finds the next place from the last one on, else from the other end of the text.
void frmHelp::Find(QTextDocument::FindFlags direction, QTextCursor::MoveOperation otherEnd) {
  const QString text = ui_->txtSearch->text();
  if (text.isEmpty() || ui_->txtHelp->find(text, direction)) return;
  ui_->txtHelp->moveCursor(otherEnd);
  ui_->txtHelp->find(text, direction);
}

/// The contents follow the chapter that stands at the top of the text.
void frmHelp::MarkChapter() {
  const int top = ui_->txtHelp->cursorForPosition(QPoint(1, kHeadingGap + 1)).position();
  QTreeWidgetItem* chapter = nullptr;
  for (QTreeWidgetItemIterator entry(ui_->trvContents); *entry; ++entry)
    if ((*entry)->data(0, kPlaceRole).toInt() <= top) chapter = *entry;
  if (chapter) ui_->trvContents->setCurrentItem(chapter);
}

void frmHelp::MarkPlaces(const QString& text) {
  QList<QTextEdit::ExtraSelection> places;
  QTextDocument* const document = ui_->txtHelp->document();
  QTextCharFormat mark;
  mark.setBackground(QColor(0xff, 0xe0, 0x66));
  mark.setForeground(Qt::black);
  if (text.size() > 1)
    for (QTextCursor place = document->find(text); !place.isNull(); place = document->find(text, place))
      places << QTextEdit::ExtraSelection{place, mark};
  ui_->txtHelp->setExtraSelections(places);
  ui_->lblFound->setText(text.isEmpty() ? QString() : QStringLiteral("Found: %1").arg(places.size()));
}

void frmHelp::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (!event->isAutoRepeat()) LeaveSearchOrClose();
  } else if (!ui_->txtSearch->hasFocus() || !Scroll(event->key())) {
    QMainWindow::keyPressEvent(event);
  }
}

/// The keys that the search has no use for turn the pages.
bool frmHelp::Scroll(int key) {
  const QMap<int, QAbstractSlider::SliderAction> actions = {{Qt::Key_Up, QAbstractSlider::SliderSingleStepSub},
                                                            {Qt::Key_Down, QAbstractSlider::SliderSingleStepAdd},
                                                            {Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
                                                            {Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd}};
  if (!actions.contains(key)) return false;
  ui_->txtHelp->verticalScrollBar()->triggerAction(actions[key]);
  return true;
}

void frmHelp::LeaveSearchOrClose() {
  if (!ui_->txtSearch->hasFocus() || ui_->txtSearch->text().isEmpty()) {
    close();
    return;
  }
  ui_->txtSearch->clear();
  ui_->txtHelp->setFocus();
}

}  // namespace hylden
