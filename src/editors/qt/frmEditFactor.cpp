#include "editors/qt/frmEditFactor.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <algorithm>
#include <optional>
#include <utility>

#include "editors/qt/EditGrid.h"
#include "measure/InterpClass.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "text/TextFile.h"
#include "ui_frmEditFactor.h"
#include "widgets/CurvePicture.h"

namespace hylden {

namespace {

constexpr char kFilter[] =
    "Amp Power File (*.pwr)|*.pwr|Cable Loss File (*.los)|*.los|Factor File (*.fac)|*.fac|Test Level File "
    "(*.lev)|*.lev|Probe File (*.prb)|*.prb|Text File (*.txt)|*.txt|All Files (*.*)|*.*";
constexpr char kLoadTitle[] = "Select Factor File", kSaveTitle[] = "Select filename",
               kQuestionTitle[] = "Save Factor File";
constexpr const char* kPatterns[] = {"*.fac", "*.lev", "*.los", "*.txt", "*.*"};
/// A table that is looked through between two keys; a longer one waits for a pause.
constexpr int kShortTable = 5000, kPauseMs = 200;

bool IsEmpty(const GridRow& row) {
  return std::all_of(row.begin(), row.end(), [](const std::string& cell) { return cell.empty(); });
}

}  // namespace

frmEditFactor::frmEditFactor(Shell& shell, QWidget* parent)
    : SetupForm(shell, parent, kQuestionTitle, "The factor table"),
      ui_(std::make_unique<Ui::frmEditFactor>()),
      grid_(std::make_unique<EditGrid>(shell.dialogs)),
      status_(new QLabel) {
  ui_->setupUi(this);
  status_->setObjectName(QStringLiteral("lblStatus"));
  status_->setTextFormat(Qt::PlainText);
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  ui_->statusBar->addWidget(status_, 1);
  ui_->splMain->setStretchFactor(1, 1);
  ui_->splMain->setSizes({330, 550});
  grid_->SetupFlexGrid(*ui_->fg2, *ui_->txtTextEdit, *ui_->lblHeader, {"Freq", "Factor"}, "Item#");
  grid_->KeepSpareRow();
  grid_->SetFaults([this](GridPlace place) { return FaultAt(place); });
  look_.setSingleShot(true);
  connect(&look_, &QTimer::timeout, this, &frmEditFactor::LookAtCells);
  connect(grid_.get(), &EditGrid::Edited, this, &frmEditFactor::CellsEdited);
  ConnectMenus();
  ConnectCurve();
  SetCaption(QStringLiteral("Factor File: "));
  CellsEdited();
  ui_->fg2->setFocus();
}

frmEditFactor::~frmEditFactor() = default;

void frmEditFactor::ConnectMenus() {
  OfferFiles(ui_->mnuFileRecent, datakind::kFactors, QStringLiteral("fac lev los prb pwr txt"),
             [this](const QString& path) { LoadFile(path); });
  On(ui_->mnuFileLoad, [this] { AskAndLoad(); });
  On(ui_->mnuFileSave, [this] { SaveEntries(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  On(ui_->mnuFileExport, [this] { ExportCurve(); });
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  On(ui_->mnuEditUndo, [this] { grid_->Undo(); });
  On(ui_->mnuEditRedo, [this] { grid_->Redo(); });
  On(ui_->mnuEditCut, [this] { grid_->Cut(); });
  On(ui_->mnuEditCopy, [this] { grid_->Copy(); });
  On(ui_->mnuEditPaste, [this] { grid_->Paste(); });
  On(ui_->mnuEditClear, [this] { grid_->Clear(); });
  On(ui_->mnuEditInsRow, [this] { grid_->InsRow(); });
  On(ui_->mnuEditDelRow, [this] { grid_->ExtractRow(); });
  const auto onRows = [this](QAbstractButton* button, void (EditGrid::*operation)()) {
    On(button, [this, operation] {
      ((*grid_).*operation)();
      ui_->fg2->setFocus();
    });
  };
  onRows(ui_->cmdInsRow, &EditGrid::InsRow);
  onRows(ui_->cmdDelRow, &EditGrid::ExtractRow);
  connect(ui_->mnuHelpFactor, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  ui_->fg2->addActions({ui_->mnuEditCut, ui_->mnuEditCopy, ui_->mnuEditPaste, ui_->mnuEditClear, ui_->mnuEditInsRow,
                        ui_->mnuEditDelRow});
}

void frmEditFactor::ConnectCurve() {
  connect(ui_->cmdFit, &QPushButton::clicked, ui_->crvFactor, &CurveView::Fit);
  connect(ui_->chkLogFreq, &QCheckBox::toggled, this,
          [this](bool isLog) { ui_->crvFactor->SetFreqAxis(isLog ? FreqAxis::Log : FreqAxis::Linear); });
  connect(grid_.get(), &EditGrid::CurrentMoved, this, &frmEditFactor::ShowCurrentPoint);
  connect(ui_->crvFactor, &CurveView::PointChosen, this, [this](int, int point) {
    if (look_.isActive()) return;  // the rows behind the points are about to change
    grid_->MakeCurrent({table_.Points[static_cast<std::size_t>(point)].Row, grid_->Current().Col});
  });
}

void frmEditFactor::FilterDefault(int kind) {
  if (kind < 0 || kind >= static_cast<int>(std::size(kPatterns))) return;
  pattern_ = kPatterns[kind];
  ShowCurve();
}

void frmEditFactor::AskAndLoad() {
  if (const auto path =
          AskFile(kLoadTitle, kFilter, datakind::kFactors, file_.Path().empty() ? pattern_ : file_.Path()))
    LoadFile(ToQt(*path));
}

void frmEditFactor::LoadFile(const QString& path) {
  Guard("mnuFileLoad", [&] {
    if (MayDropEntries()) Load(FromQt(path));
  });
}

void frmEditFactor::Load(const std::string& path) {
  KnownFile file(path);
  std::vector<GridRow> rows;
  if (!ReadTable(path, rows)) return;
  saved_ = rows;
  rows.emplace_back();
  grid_->SetRows(std::move(rows));
  notKept_ = NotKeptOf(file.Content());
  UseFile(std::move(file));
  ui_->crvFactor->Fit();
}

/// The table as the program reads it; a file that is none is told.
bool frmEditFactor::ReadTable(const std::string& path, std::vector<GridRow>& rows) {
  InterpClass table(shell_);
  if (!shell_.Ok(table.InitInterp(path))) {
    shell_.dialogs.Tell("error loading factor file");
    return false;
  }
  std::vector<double> frequencies;
  std::vector<float> values;
  setEnabled(false);  // the program takes turns while a long table comes: what was typed now would be lost
  table.GetTable(frequencies, values);
  setEnabled(true);
  ui_->fg2->setFocus();
  for (std::size_t i = 0; i + 1 < frequencies.size(); ++i)
    rows.push_back({PlainText(frequencies[i]), PlainText(values[i])});
  return true;
}

bool frmEditFactor::HasUnsaved() const {
  const GridCells& cells = grid_->Cells();
  std::size_t next = 0;
  for (int row = 1; row <= cells.Rows(); ++row) {
    const GridRow& shown = cells.Row(row);
    if (IsEmpty(shown)) continue;
    if (next == saved_.size() ||
        !std::equal(shown.begin(), shown.end(), saved_[next].begin(), saved_[next].end(), SameEntry))
      return true;
    ++next;
  }
  return next < saved_.size();
}

bool frmEditFactor::SaveEntries() {
  // What was skipped is still to be saved, also on the way out.
  const std::string path = file_.Path();
  return (path.empty() ? SaveAs() : MayReplaceFile(path) && SaveGrid(path)) && !HasUnsaved();
}

bool frmEditFactor::SaveAs() {
  const auto path =
      AskSaveFile(kSaveTitle, kFilter, datakind::kFactors, file_.Path().empty() ? pattern_ : file_.Path());
  return path && MayReplaceFile(*path) && SaveGrid(*path);
}

/// Asks before what the file holds besides the table, or what somebody else has written into it, is lost.
bool frmEditFactor::MayReplaceFile(const std::string& path) {
  if (path != file_.Path()) return true;  // the dialog has asked
  std::string loss = file_.LostByReplacing();
  if (loss.empty() && !notKept_.empty())
    loss = path + "\r\nalso holds " + notKept_ + ". A save keeps frequencies and values only.";
  return MayReplace(loss);
}

bool frmEditFactor::SaveGrid(const std::string& path) {
  const GridCells& cells = grid_->Cells();
  std::string text = FactorFileText(cells);
  try {
    ReplaceFile(path, text);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "frmEditFactor.SaveGrid", path);
    return false;
  }
  saved_ = WrittenRows(cells);
  notKept_.clear();
  UseFile({path, std::move(text)});
  shell_.Saved(path);
  const char* const but = !table_.IsUsable() ? "Hylden can't use it as a table" : "not all rows are in it";
  if (!table_.IsUsable() || table_.Skipped > 0)
    shell_.dialogs.Tell(std::string("The file is saved, but ") + but + ":\r\n" + table_.Summary(),
                        MessageIcon::Exclamation);
  return true;
}

/// The form is about this file now.
void frmEditFactor::UseFile(KnownFile file) {
  file_ = std::move(file);
  const std::string& path = file_.Path();
  ui_->lblFile->setText(QStringLiteral("File: ") + ToQt(path));
  ui_->lblFile->setToolTip(ToQt(path));
  ShowSaveTarget(*ui_->mnuFileSave, path);
  SetCaption(QStringLiteral("Factor File: ") + ToQt(path));
  AddRecentFile(path);
  LookAtCells();
}

void frmEditFactor::ExportCurve() {
  const auto path = AskSaveFile("Save curve as picture", kCurvePictureFilter, datakind::kFactors, {});
  if (path) SaveCurvePicture(shell_, *ui_->crvFactor, *path);
}

void frmEditFactor::CellsEdited() {
  ui_->mnuEditUndo->setEnabled(grid_->Cells().CanUndo());
  ui_->mnuEditRedo->setEnabled(grid_->Cells().CanRedo());
  look_.start(grid_->Cells().Rows() > kShortTable ? kPauseMs : 0);
  ShowMark();
}

void frmEditFactor::LookAtCells() {
  look_.stop();
  table_ = LookAtTable(grid_->Cells());
  const QString summary = ToQt(table_.Summary());
  status_->setText(summary);
  status_->setToolTip(summary);
  ShowCurve();
}

void frmEditFactor::ShowCurve() {
  const FactorKindText& kind = FactorKindOf(file_.Path().empty() ? pattern_ : file_.Path());
  Curve curve{
      kind.Name, kind.Unit, {}, ValueAxis::Left, kind.Scale == FreqScale::Log ? FreqAxis::Log : FreqAxis::Linear};
  for (const FactorTable::Point& point : table_.Points)
    curve.Points.push_back({point.Freq, static_cast<double>(point.Value)});
  ui_->crvFactor->SetCurves({std::move(curve)});
  ShowCurrentPoint();
}

void frmEditFactor::ShowCurrentPoint() {
  const auto found = std::find_if(table_.Points.begin(), table_.Points.end(), [this](const FactorTable::Point& point) {
    return point.Row == grid_->Current().Row;
  });
  std::optional<CurvePlace> place;
  if (found != table_.Points.end()) place = {0, static_cast<int>(found - table_.Points.begin())};
  ui_->crvFactor->SetCurrent(place);
}

std::string frmEditFactor::FaultAt(GridPlace place) const {
  const GridRow& row = grid_->Cells().Row(place.Row);
  const FactorRowState state = LookAtRow(row[0], row[1]);
  if (state.Col == place.Col) return grid_->Cells().Heading(place.Col) + " " + state.Problem;
  const bool repeated = place.Col == 1 && state.Is == FactorRow::Point && table_.Repeated.count(state.Freq) > 0;
  return repeated ? "This frequency stands more than twice" : std::string();
}

}  // namespace hylden
