#include "instruments/qt/frmBus.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>
#include <algorithm>
#include <utility>

#include "instruments/Instruments.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "ui_frmBus.h"
#include "widgets/LabelText.h"
#include "widgets/TableCopy.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kWatchMs = 100;
constexpr int kRowMargin = 6, kLarge = 10'000;
constexpr int kAddressColumn = 0, kStatusColumn = 3;

void SetCell(QTableWidget& table, int row, int column, const std::string& text) {
  QTableWidgetItem* item = table.item(row, column);
  if (!item) {
    item = new QTableWidgetItem;
    if (column == kAddressColumn) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    table.setItem(row, column, item);
  }
  if (item->text() == ToQt(text)) return;
  item->setText(ToQt(text));
  item->setToolTip(ToQt(text));
}

}  // namespace

frmBus::frmBus(Shell& shell, Instruments& instruments, std::function<std::vector<BusUnit>()> units, QWidget* parent)
    : WorkingForm(shell, parent),
      panel_(shell, instruments),
      units_(std::move(units)),
      ui_(std::make_unique<Ui::frmBus>()) {
  ui_->setupUi(this);
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  for (QWidget* const box : std::initializer_list<QWidget*>{ui_->txtTrace, ui_->txtCommand, ui_->txtAnswer})
    box->setFont(fixed);
  ui_->txtTrace->setMaximumBlockCount(static_cast<int>(BusTrace::kCapacity));
  ui_->grdUnits->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  ui_->grdUnits->horizontalHeader()->setStretchLastSection(true);
  ui_->grdUnits->verticalHeader()->setDefaultSectionSize(ui_->grdUnits->fontMetrics().height() + kRowMargin);
  new TableCopy(*ui_->grdUnits);
  ui_->splBus->setStretchFactor(1, 1);
  ui_->splBus->setSizes({1, kLarge});  // the trace gets what the rest can spare
  ConnectCommands();
  ConnectTrace();
  if (const auto station = units_(); !station.empty()) ui_->spnAddress->setValue(station.front().Address);
  ui_->txtCommand->setFocus();
  watch_.setInterval(kWatchMs);
  connect(&watch_, &QTimer::timeout, this, &frmBus::Refresh);
  Refresh();
}

frmBus::~frmBus() = default;

void frmBus::OnBus(QAbstractButton* button, std::function<BusPanel::Outcome()> command) {
  commands_.push_back(button);
  On(button, [this, run = std::move(command)] { ShowOutcome(run()); });
}

void frmBus::ConnectCommands() {
  const auto text = [this] { return FromQt(ui_->txtCommand->text()); };
  const auto showAnswer = [this](const BusPanel::Outcome& outcome) {
    ui_->txtAnswer->setText(outcome ? ToQt(*outcome) : QString());
    return outcome ? BusPanel::Outcome("Answer from " + std::to_string(Address())) : outcome;
  };
  OnBus(ui_->cmdSend, [this, text] { return panel_.Send(Address(), text(), End()); });
  OnBus(ui_->cmdAsk, [this, text, showAnswer] { return showAnswer(panel_.Ask(Address(), text(), End())); });
  OnBus(ui_->cmdRead, [this, showAnswer] { return showAnswer(panel_.Read(Address(), End())); });
  OnBus(ui_->cmdLocal, [this] { return panel_.Local(Address()); });
  OnBus(ui_->cmdClearInterface, [this] { return panel_.ClearInterface(); });
  OnBus(ui_->cmdListeners, [this] { return panel_.FindListeners(); });
  OnBus(ui_->cmdRfOff, [this] { return panel_.EndRf(); });
  connect(ui_->txtCommand, &QLineEdit::returnPressed, this, [this] {
    const bool asks = ui_->txtCommand->text().contains(QLatin1Char('?'));
    (asks ? ui_->cmdAsk : ui_->cmdSend)->click();
  });
  connect(ui_->spnAddress, &QSpinBox::valueChanged, this, &frmBus::TakeAddress);
  connect(ui_->grdUnits, &QTableWidget::itemSelectionChanged, this, [this] {
    if (const auto selected = ui_->grdUnits->selectedItems(); !selected.isEmpty())
      ui_->spnAddress->setValue(ui_->grdUnits->item(selected.front()->row(), kAddressColumn)->text().toInt());
  });
}

void frmBus::ConnectTrace() {
  connect(ui_->chkPause, &QCheckBox::clicked, this, &frmBus::Refresh);
  connect(ui_->cmdClear, &QPushButton::clicked, this, [this] {
    shownFrom_ = shownTo_ = shell_.gpib.Trace().End();
    ui_->txtTrace->clear();
  });
  On(ui_->cmdSaveAs, [this] { SaveTrace(); });
  connect(ui_->cmdHelp, &QPushButton::clicked, this, [this] { emit HelpRequested(HelpTopic()); });
}

/// An instrument of the station has its commands end as its definition says.
void frmBus::TakeAddress(int address) {
  for (const BusUnit& unit : units_())
    if (unit.Address == address) ui_->cboEnd->setCurrentIndex(static_cast<int>(unit.Ends));
}

int frmBus::Address() const {
  return ui_->spnAddress->value();
}

LineEnd frmBus::End() const {
  return static_cast<LineEnd>(ui_->cboEnd->currentIndex());
}

void frmBus::ShowOutcome(const BusPanel::Outcome& outcome) {
  std::string text = outcome ? *outcome : std::string();
  if (!outcome)
    for (const Message& box : outcome.error().Boxes()) text += box.text;
  QPalette palette;
  if (!outcome) palette.setColor(QPalette::WindowText, HighlightRed(palette));
  ui_->lblState->setPalette(palette);
  ShowText(*ui_->lblState, ToQt(text));
  told_ = true;
}

void frmBus::Refresh() {
  ShowState();
  ShowUnits();
  if (!ui_->chkPause->isChecked()) ShowTrace();
}

void frmBus::ShowState() {
  const std::string obstacle = panel_.Obstacle();
  for (QWidget* const command : commands_) command->setEnabled(obstacle.empty());
  ui_->cmdRfOff->setEnabled(obstacle.empty() && panel_.RfMayBeOn());
  // A box that stands there would hold up a run that has RF on.
  ui_->cmdSaveAs->setEnabled(obstacle.empty());
  ui_->lblRf->ShowRf(panel_.RfMayBeOn(), false);
  ui_->lblRf->setVisible(panel_.RfMayBeOn());
  if (!obstacle.empty()) {
    ui_->lblState->setPalette({});
    ShowText(*ui_->lblState, ToQt(obstacle + "; commands can be sent when that has ended."));
    told_ = false;
  } else if (!told_) {
    ShowText(*ui_->lblState, QStringLiteral("A command to the generator may switch RF on."));
  }
}

void frmBus::ShowUnits() {
  const std::vector<BusPanel::Row> rows = panel_.Rows(units_());
  QTableWidget& table = *ui_->grdUnits;
  table.setRowCount(static_cast<int>(rows.size()));
  int at = 0;
  for (const BusPanel::Row& row : rows) {
    SetCell(table, at, kAddressColumn, std::to_string(row.Unit.Address));
    SetCell(table, at, 1, row.Unit.Name);
    SetCell(table, at, 2, row.Way);
    SetCell(table, at++, kStatusColumn, row.Status);
  }
}

void frmBus::ShowTrace() {
  const std::uint64_t end = shell_.gpib.Trace().End();
  if (shownTo_ == end) return;
  QString text;
  for (const std::string& line : panel_.Lines(shownTo_)) text += (text.isEmpty() ? "" : "\n") + ToQt(line);
  ui_->txtTrace->appendPlainText(text);
  shownTo_ = end;
}

void frmBus::SaveTrace() {
  const auto path = shell_.dialogs.SaveFile({"Save the trace of the bus", "Text (*.txt)|*.txt|All Files|*.*",
                                             shell_.settings.GetDataDir(datakind::kTestResults), "bus-trace.txt"});
  if (path && shell_.Ok(panel_.SaveLines(shownFrom_, *path))) ShowOutcome("The trace is in " + *path);
}

bool frmBus::QueryUnload() {
  panel_.End();
  return true;
}

void frmBus::showEvent(QShowEvent* event) {
  WorkingForm::showEvent(event);
  Refresh();
  watch_.start();
}

void frmBus::hideEvent(QHideEvent* event) {
  watch_.stop();
  WorkingForm::hideEvent(event);
}

void frmBus::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return WorkingForm::keyPressEvent(event);
  if (!panel_.Obstacle().empty())
    emit EscapePressed();
  else
    PressHalt();
}

void frmBus::PressHalt() {
  if (!panel_.RfMayBeOn()) return;
  Guard("cmdRfOff", [this] { ShowOutcome(panel_.EndRf()); });
}

}  // namespace hylden
