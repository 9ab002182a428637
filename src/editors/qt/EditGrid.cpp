#include "editors/qt/EditGrid.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "editors/qt/GridModel.h"
#include "platform/Dialogs.h"
#include "platform/qt/QtText.h"

namespace hylden {

namespace {

constexpr int kNumberColumnTwips = 600, kTwipsPerInch = 1440;

bool IsTyped(const QKeyEvent& key) {
  const bool command = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  // The right Alt key of many keyboards is Ctrl and Alt at once, and types.
  const bool isGraph = (key.modifiers() & Qt::ControlModifier) && (key.modifiers() & Qt::AltModifier);
  return (!command || isGraph || (key.modifiers() & Qt::GroupSwitchModifier)) && !key.text().isEmpty() &&
         key.text().front().isPrint();
}

bool IsEnter(const QKeyEvent& key) {
  return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

/// What the clipboard holds is more than goes into one cell.
bool ClipboardHoldsTable() {
  const QString text = QApplication::clipboard()->text().trimmed();
  return text.contains(QLatin1Char('\t')) || text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
}

}  // namespace

EditGrid::EditGrid(Dialogs& dialogs, QObject* parent)
    : QObject(parent), dialogs_(dialogs), model_(std::make_unique<GridModel>(cells_)) {}

EditGrid::~EditGrid() = default;

void EditGrid::SetupFlexGrid(QTableView& grid, QLineEdit& editBox, QLabel& header,
                             const std::vector<std::string>& columnHeadings, const std::string& rowHeading) {
  grid_ = &grid, box_ = &editBox, header_ = &header, rowHeading_ = rowHeading;
  cells_ = GridCells(columnHeadings);
  cells_.onChanging = [this](const GridChange& change) {
    changing_ = true;
    model_->Changing(change);
  };
  cells_.onChanged = [this](const GridChange& change) {
    model_->Changed(change);
    changing_ = false;
    SetRowHeaderWidth();
    grid_->viewport()->update();
    emit Edited();
  };
  grid.setModel(model_.get());
  grid.setItemDelegate(new GridPainter(grid));
  grid.setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid.setSelectionMode(QAbstractItemView::ContiguousSelection);
  grid.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  grid.horizontalHeader()->setHighlightSections(false);
  // Every row is of one height: no row is asked for it.
  grid.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  grid.verticalHeader()->setDefaultSectionSize(grid.fontMetrics().height() + 8);
  ShowRowHeading(rowHeading);
  grid.setTabKeyNavigation(false);
  TakeBox();
  grid.installEventFilter(this);
  connect(&grid, &QAbstractItemView::doubleClicked, this, &EditGrid::BeginEdit);
  const auto follow = [this] { PlaceBox(); };
  connect(grid.horizontalScrollBar(), &QScrollBar::valueChanged, this, follow);
  connect(grid.verticalScrollBar(), &QScrollBar::valueChanged, this, follow);
  connect(grid.horizontalHeader(), &QHeaderView::sectionResized, this, follow);
  connect(grid.selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (current.isValid() && !changing_) ArriveAt(GridModel::PlaceOf(current));
  });
  SetRowHeaderWidth();
  MakeCurrent({1, 1});
}

/// The box stands in the cell, in its colours, until it is needed.
void EditGrid::TakeBox() {
  box_->setParent(grid_->viewport());
  box_->hide();
  box_->setFrame(false);
  QPalette colours = box_->palette();
  colours.setColor(QPalette::Base, kCurrentCell);
  colours.setColor(QPalette::Text, kOnCurrentCell);
  box_->setPalette(colours);
  box_->installEventFilter(this);
  connect(box_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (IsInBox()) cells_.Type(place_, FromQt(text));
  });
}

void EditGrid::AddCol() {
  EndEdit();
  cells_.AddCol();
  MakeCurrent(place_);
}

void EditGrid::AddRow() {
  EndEdit();
  cells_.AddRow();
  MakeCurrent({cells_.Rows(), place_.Col});
}

void EditGrid::DelCol() {
  RemoveCol(cells_.Columns());
}

void EditGrid::DelRow() {
  EndEdit();
  if (cells_.Rows() > 1) RemoveRows(cells_.Rows(), cells_.Rows());
}

void EditGrid::InsRow() {
  EndEdit();
  cells_.InsRow(place_.Row);
  MakeCurrent(place_);
}

void EditGrid::InsCol() {
  EndEdit();
  cells_.InsCol(place_.Col);
  MakeCurrent(place_);
}

void EditGrid::ExtractRow() {
  EndEdit();
  const GridBlock block = Selected();
  const bool wholeRows = block.First.Col == 1 && block.Last.Col == cells_.Columns();
  if (wholeRows && block.First.Row <= place_.Row && place_.Row <= block.Last.Row)
    RemoveRows(block.First.Row, block.Last.Row);
  else
    RemoveRows(place_.Row, place_.Row);
}

void EditGrid::ExtractCol() {
  RemoveCol(place_.Col);
}

/// Asks before data go.
/// @param which  "Row 3"
bool EditGrid::MayRemove(const std::string& title, const std::string& which, bool hasData) {
  return !hasData || dialogs_.Show({"There is data in " + which + " ! Delete anyway?", title, MessageIcon::Question,
                                    MessageButtons::YesNo}) == MessageAnswer::Yes;
}

void EditGrid::RemoveRows(int first, int last) {
  bool hasData = false;
  for (int row = first; row <= last && !hasData; ++row) hasData = cells_.RowHasData(row);
  const std::string from = std::to_string(first), to = std::to_string(last);
  const bool may = first == last ? MayRemove("Delete Row!", "Row " + from, hasData)
                                 : MayRemove("Delete Rows!", "Rows " + from + " to " + to, hasData);
  if (!may) return;
  const bool isCurrent = first <= place_.Row && place_.Row <= last;
  const GridPlace place = isCurrent ? GridPlace{std::max(first - 1, 1), place_.Col} : place_;
  cells_.RemoveRows(first, last);
  MakeCurrent(place);
}

void EditGrid::RemoveCol(int col) {
  EndEdit();
  if (cells_.Columns() == 1 || !MayRemove("Delete Column!", "Col " + std::to_string(col), cells_.ColHasData(col)))
    return;
  const GridPlace place = col == place_.Col ? GridPlace{place_.Row, std::max(col - 1, 1)} : place_;
  cells_.RemoveCol(col);
  MakeCurrent(place);
}

void EditGrid::Copy() {
  EndEdit();
  QApplication::clipboard()->setText(ToQt(cells_.BlockText(Selected())));
}

void EditGrid::Cut() {
  Copy();
  Clear();
}

void EditGrid::Paste() {
  EndEdit();
  const auto rows = ParseBlock(FromQt(QApplication::clipboard()->text()));
  if (!rows) {
    for (const Message& box : rows.error().Boxes()) dialogs_.Show(box);
    return;
  }
  const GridBlock written = cells_.Paste(Selected().First, *rows);
  MakeCurrent(written.First);
  Select(written);
  const int room = written.Last.Col - written.First.Col + 1;
  if (std::any_of(rows->begin(), rows->end(), [&](const GridRow& row) { return static_cast<int>(row.size()) > room; }))
    dialogs_.Tell("What lay beyond the last column was left out.", MessageIcon::Information);
}

void EditGrid::Clear() {
  EndEdit();
  const GridBlock block = Selected();
  cells_.ClearBlock(block);
  ArriveAt(place_);
}

void EditGrid::Undo() {
  EndEdit();
  if (const auto place = cells_.Undo()) MakeCurrent(*place);
}

void EditGrid::Redo() {
  EndEdit();
  if (const auto place = cells_.Redo()) MakeCurrent(*place);
}

void EditGrid::SetRows(std::vector<GridRow> rows) {
  EndEdit();
  cells_.SetRows(std::move(rows));
  MakeCurrent({1, 1});
}

void EditGrid::KeepSpareRow() {
  cells_.KeepsSpareRow = true;
}

void EditGrid::SetFaults(CellFault faults) {
  model_->Fault = std::move(faults);
  grid_->viewport()->update();
}

/// Also after a change of lines, when the view has moved its own current cell with them.
void EditGrid::MakeCurrent(GridPlace place) {
  EndEdit();
  const QModelIndex index = model_->IndexOf(Within(place));
  if (grid_->currentIndex() == index) return ArriveAt(place);
  grid_->setCurrentIndex(index);
}

GridPlace EditGrid::Within(GridPlace place) const {
  return {std::min(place.Row, cells_.Rows()), std::min(place.Col, cells_.Columns())};
}

void EditGrid::ArriveAt(GridPlace place) {
  EndEdit();  // which may take an empty row away
  place_ = place = Within(place);
  copy_ = ToQt(cells_.Text(place));
  box_->setText(copy_);
  header_->setText(
      QStringLiteral("%1 %2 : %3").arg(ToQt(rowHeading_), QString::number(place.Row), ToQt(cells_.Heading(place.Col))));
  emit CurrentMoved(place.Row, place.Col);
}

bool EditGrid::IsInBox() const {
  return box_ && !box_->isHidden();
}

void EditGrid::BeginEdit() {
  if (IsInBox()) return;
  grid_->scrollTo(model_->IndexOf(place_));
  box_->setText(ToQt(cells_.Text(place_)));
  box_->show();
  PlaceBox();
  box_->setFocus();
  box_->end(false);
}

void EditGrid::EndEdit() {
  if (!IsInBox()) return;
  if (grid_->window()->focusWidget() == box_) grid_->setFocus();
  box_->hide();
  cells_.EndTyping();
}

void EditGrid::PlaceBox() {
  if (IsInBox()) box_->setGeometry(grid_->visualRect(model_->IndexOf(place_)));
}

bool EditGrid::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    return watched == box_ ? BoxKey(key) : GridKey(key);
  }
  if (watched == box_ && event->type() == QEvent::FocusOut) {
    const Qt::FocusReason reason = static_cast<const QFocusEvent*>(event)->reason();
    const bool comesBack =
        reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason;
    if (!comesBack) EndEdit();
  }
  return QObject::eventFilter(watched, event);
}

bool EditGrid::GridKey(const QKeyEvent& key) {
  if (TabKey(key)) return true;
  switch (key.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
      return MoveKey(key);
    case Qt::Key_F2:
      BeginEdit();
      return true;
    case Qt::Key_Delete:
      Clear();
      return true;
    case Qt::Key_Backspace:
      BeginEdit();
      box_->backspace();
      return true;
    default:
      break;
  }
  if (IsEnter(key)) {
    MakeCurrent(cells_.Below(place_));
    return true;
  }
  if (!IsTyped(key)) return false;
  BeginEdit();
  box_->insert(key.text());
  return true;
}

bool EditGrid::BoxKey(const QKeyEvent& key) {
  if (TabKey(key)) return true;
  if (IsEnter(key)) {
    EndEdit();
    return true;
  }
  if (key.matches(QKeySequence::Paste) && ClipboardHoldsTable()) {
    Paste();
    return true;
  }
  const bool atStart = box_->cursorPosition() == 0, atEnd = box_->cursorPosition() == box_->text().size();
  switch (key.key()) {
    case Qt::Key_Escape:
      box_->setText(copy_);
      box_->end(false);
      return true;
    case Qt::Key_Left:
      return atStart && !box_->hasSelectedText() && MoveKey(key);
    case Qt::Key_Right:
      return atEnd && !box_->hasSelectedText() && MoveKey(key);
    case Qt::Key_Up:
    case Qt::Key_Down:
      return MoveKey(key);
    default:
      return false;
  }
}

/// An arrow key alone; with Shift and Ctrl they are the view's, for selecting.
bool EditGrid::MoveKey(const QKeyEvent& key) {
  if (key.modifiers() & ~Qt::KeypadModifier) return false;
  switch (key.key()) {
    case Qt::Key_Left:
      MakeCurrent(cells_.LeftOf(place_));
      return true;
    case Qt::Key_Right:
      MakeCurrent(cells_.RightOf(place_));
      return true;
    case Qt::Key_Up:
      MakeCurrent(cells_.Above(place_));
      return true;
    default:
      MakeCurrent(cells_.Below(place_));
      return true;
  }
}

/// Tab goes from cell to cell, and at either end on to the next control.
bool EditGrid::TabKey(const QKeyEvent& key) {
  const bool back = key.key() == Qt::Key_Backtab;
  if ((key.key() != Qt::Key_Tab && !back) || (key.modifiers() & Qt::ControlModifier)) return false;
  const GridPlace next = back ? cells_.LeftOf(place_) : cells_.RightOf(place_);
  if (next != place_) {
    MakeCurrent(next);
    return true;
  }
  EndEdit();
  return false;
}

GridBlock EditGrid::Selected() const {
  const QItemSelection selection = grid_->selectionModel()->selection();
  if (selection.isEmpty()) return {place_, place_};
  const QItemSelectionRange& range = selection.first();
  return {GridModel::PlaceOf(range.topLeft()), GridModel::PlaceOf(range.bottomRight())};
}

void EditGrid::Select(const GridBlock& block) {
  grid_->selectionModel()->select(QItemSelection(model_->IndexOf(block.First), model_->IndexOf(block.Last)),
                                  QItemSelectionModel::ClearAndSelect);
}

/// 600 twips, or what the largest number takes.
void EditGrid::SetRowHeaderWidth() {
  const int twips = grid_->logicalDpiX() * kNumberColumnTwips / kTwipsPerInch;
  const QFontMetrics metrics = grid_->fontMetrics();
  const int text =
      std::max(metrics.horizontalAdvance(ToQt(rowHeading_)), metrics.horizontalAdvance(QString::number(cells_.Rows())));
  grid_->verticalHeader()->setFixedWidth(std::max(twips, text + metrics.averageCharWidth() * 2));
}

/// The view has a button in the corner, which selects all, and no text for it.
void EditGrid::ShowRowHeading(const std::string& heading) {
  auto* const corner = grid_->findChild<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
  if (!corner) return;
  auto* const label = new QLabel(ToQt(heading), corner);
  label->setObjectName(QStringLiteral("lblRowHeading"));
  label->setAlignment(Qt::AlignCenter);
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  auto* const layout = new QHBoxLayout(corner);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label);
}

}  // namespace hylden
