#include "documents/qt/frmCalCurves.h"

#include <QHeaderView>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTableWidget>
#include <algorithm>
#include <optional>

#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "text/TextFile.h"
#include "ui_frmCalCurves.h"
#include "widgets/CurvePicture.h"

namespace hylden {

namespace {

/// What differs between the windows of the kinds.
struct KindText {
  const char *Caption, *Add, *Column, *Question, *Filter;
  std::string_view DataKind;
};
constexpr KindText kKinds[] = {
    {"Calibration Curves", "&Add Record...", "Record", "Select Calibration File", "CalInfo (*.hyinfo)|*.hyinfo",
     datakind::kCalibrations},
    {"Insertion Loss Curves", "&Add File...", "File", "Select Insertion Loss File",
     "InsLoss (*.los)|*.los|Text File (*.txt)|*.txt|All Files (*.*)|*.*", datakind::kInsertionLoss}};
constexpr int kNameColumn = 0, kSummaryColumn = 1, kDescriptionColumn = 2;
constexpr int kAllQuantities = -1;
constexpr int kRowMargin = 6, kLarge = 10'000;

const KindText& TextOf(CurveKind kind) {
  return kKinds[static_cast<std::size_t>(kind)];
}

QTableWidgetItem* NewCell(const std::string& text, const std::string& toolTip) {
  auto* const cell = new QTableWidgetItem(ToQt(text));
  cell->setToolTip(ToQt(toolTip));
  return cell;
}

}  // namespace

frmCalCurves::frmCalCurves(Shell& shell, CurveKind kind, QWidget* parent)
    : SetupForm(shell, parent, "", ""), files_(shell, kind), kind_(kind), ui_(std::make_unique<Ui::frmCalCurves>()) {
  ui_->setupUi(this);
  const KindText& text = TextOf(kind);
  setWindowTitle(QLatin1String(text.Caption));
  ui_->cmdAdd->setText(QLatin1String(text.Add));
  ui_->grdFiles->setHorizontalHeaderLabels(
      {QLatin1String(text.Column), QStringLiteral("Values"), QStringLiteral("Description")});
  ui_->grdFiles->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  ui_->grdFiles->horizontalHeader()->setStretchLastSection(true);
  ui_->grdFiles->verticalHeader()->setDefaultSectionSize(ui_->grdFiles->fontMetrics().height() + kRowMargin);
  ui_->splCurves->setStretchFactor(0, 1);
  // All the files there can be are in sight at once.
  const int rowHeight = ui_->grdFiles->verticalHeader()->defaultSectionSize();
  ui_->splCurves->setSizes({kLarge, rowHeight * static_cast<int>(CurveOverlay::kMost + 1) + kRowMargin});
  ConnectCommands();
}

frmCalCurves::~frmCalCurves() = default;

void frmCalCurves::ConnectCommands() {
  On(ui_->cmdAdd, [this] { AskAndAdd(files_.File(0).Path()); });
  On(ui_->cmdRemove, [this] {
    files_.Remove(static_cast<std::size_t>(ChosenFile()));
    ShowFiles(0);
  });
  On(ui_->cmdFirst, [this] {
    files_.MakeFirst(static_cast<std::size_t>(ChosenFile()));
    ShowFiles(0);
  });
  On(ui_->cmdPicture, [this] { SavePicture(); });
  connect(ui_->cmdFit, &QPushButton::clicked, ui_->crvFiles, &CurveView::Fit);
  connect(ui_->cmdClose, &QPushButton::clicked, this, &QWidget::close);
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
  connect(ui_->chkLogFreq, &QCheckBox::toggled, this,
          [this](bool isLog) { ui_->crvFiles->SetFreqAxis(isLog ? FreqAxis::Log : FreqAxis::Linear); });
  connect(ui_->cmbQuantity, &QComboBox::currentIndexChanged, this, &frmCalCurves::ShowCurves);
  connect(ui_->chkDifference, &QCheckBox::toggled, this, &frmCalCurves::ShowCurves);
  connect(ui_->grdFiles, &QTableWidget::itemSelectionChanged, this, &frmCalCurves::EnableCommands);
  connect(ui_->crvFiles, &CurveView::PointChosen, this, [this](int curve, int point) {
    ui_->statusBar->showMessage(ui_->crvFiles->ReadoutOf({curve, point}));
  });
}

/// A box would hold up a run that is on.
bool frmCalCurves::MayAsk() {
  if (!shell_.InstrumentsClaimed()) return true;
  ui_->statusBar->showMessage(QStringLiteral("Not while the instruments are in use."));
  return false;
}

bool frmCalCurves::AskAndAdd(const std::string& beside) {
  if (!MayAsk()) return false;
  const KindText& text = TextOf(kind_);
  const auto path = AskFile(text.Question, text.Filter, text.DataKind, beside);
  return path && AddFile(*path);
}

bool frmCalCurves::AddFile(const std::string& path) {
  if (!shell_.Ok(files_.Add(path))) return false;
  if (files_.Size() == 1) OfferQuantities();
  // Three curves of each file can't be told apart.
  if (files_.Size() == 2 && !Choice().Quantity) ui_->cmbQuantity->setCurrentIndex(1);
  ShowFiles(static_cast<int>(files_.Size()) - 1);
  return true;
}

void frmCalCurves::OfferQuantities() {
  const QSignalBlocker quiet(ui_->cmbQuantity);
  ui_->cmbQuantity->clear();
  if (kind_ == CurveKind::InsertionLoss)
    ui_->cmbQuantity->addItem(QStringLiteral("Direct, insert and loss"), kAllQuantities);
  for (std::size_t i = 0; i < files_.Quantities().size(); ++i) {
    const CurveQuantity& quantity = files_.Quantities()[i];
    ui_->cmbQuantity->addItem(QLatin1String(quantity.Name), static_cast<int>(i));
    ui_->cmbQuantity->setItemData(ui_->cmbQuantity->count() - 1, QLatin1String(quantity.Meaning), Qt::ToolTipRole);
  }
}

CurveChoice frmCalCurves::Choice() const {
  CurveChoice choice;
  const int quantity = ui_->cmbQuantity->currentData().toInt();
  choice.Quantity = quantity == kAllQuantities ? std::nullopt : std::optional(static_cast<std::size_t>(quantity));
  choice.Difference = ui_->chkDifference->isChecked();
  return choice;
}

int frmCalCurves::ChosenFile() const {
  return std::max(ui_->grdFiles->currentRow(), 0);
}

void frmCalCurves::ShowFiles(int chosen) {
  const auto files = static_cast<int>(files_.Size());
  {
    const QSignalBlocker quiet(ui_->grdFiles);
    ui_->grdFiles->setRowCount(files);
    for (int row = 0; row < files; ++row) {
      const auto file = static_cast<std::size_t>(row);
      const std::string description = files_.File(file).Description();
      ui_->grdFiles->setItem(row, kNameColumn, NewCell(files_.NameOf(file), files_.File(file).Path()));
      ui_->grdFiles->setItem(row, kDescriptionColumn, NewCell(description, description));
    }
    ui_->grdFiles->selectRow(chosen);
  }
  setWindowTitle(QLatin1String(TextOf(kind_).Caption) + QStringLiteral(": ") + ToQt(files_.NameOf(0)));
  if (files == 1) ui_->chkDifference->setChecked(false);
  EnableCommands();
  ShowCurves();
}

void frmCalCurves::EnableCommands() {
  const bool hasOthers = files_.Size() > 1;
  ui_->chkDifference->setEnabled(hasOthers);
  ui_->cmdRemove->setEnabled(hasOthers);
  ui_->cmdFirst->setEnabled(hasOthers && ChosenFile() > 0);
}

void frmCalCurves::ShowCurves() {
  const QVariant meaning = ui_->cmbQuantity->currentData(Qt::ToolTipRole);
  ui_->cmbQuantity->setToolTip(meaning.toString());
  ui_->statusBar->clearMessage();
  ui_->crvFiles->SetCurrent(std::nullopt);
  ui_->crvFiles->SetCurves(files_.Curves(Choice()));
  ui_->crvFiles->Fit();
  ShowSummaries();
}

void frmCalCurves::ShowSummaries() {
  const CurveChoice choice = Choice();
  ui_->grdFiles->horizontalHeaderItem(kSummaryColumn)
      ->setText(choice.Difference ? QStringLiteral("Largest difference") : QStringLiteral("Values"));
  for (int row = 0; row < ui_->grdFiles->rowCount(); ++row) {
    const std::string summary = files_.SummaryOf(static_cast<std::size_t>(row), choice);
    ui_->grdFiles->setItem(row, kSummaryColumn, NewCell(summary, summary));
  }
}

void frmCalCurves::SavePicture() {
  if (!MayAsk()) return;
  const auto path = AskSaveFile("Save curves as picture", kCurvePictureFilter, TextOf(kind_).DataKind, {});
  if (!path) return;
  CurveChoice choice = Choice();
  choice.FullNames = true;  // a picture has neither caption nor table
  ui_->crvFiles->SetCurves(files_.Curves(choice));
  SaveCurvePicture(shell_, *ui_->crvFiles, *path);
  ui_->crvFiles->SetCurves(files_.Curves(Choice()));
}

}  // namespace hylden
