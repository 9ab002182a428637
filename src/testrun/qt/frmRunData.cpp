#include "testrun/qt/frmRunData.h"
#include "testrun/RunExport.h"
#include "testrun/qt/frmReport.h"
#include "text/Case.h"
#include "text/TextFile.h"

#include <QKeyEvent>
#include <cmath>
#include <filesystem>
#include <utility>

#include "measure/Conversions.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "testrun/qt/UnitsMenu.h"
#include "text/Pattern.h"
#include "ui_frmRunData.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/CurvePicture.h"
#include "widgets/FileDrop.h"
#include "widgets/LabelText.h"
#include "widgets/TableCopy.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kCommentColumn = static_cast<int>(RunColumn::TestLevel);
/// More marks cover each other, and more comments are read in their list.
constexpr std::size_t kMostMarks = 200;

QString HtmlOf(const std::vector<InfoSection>& sections) {
  QString html;
  for (const InfoSection& section : sections) {
    html += QStringLiteral("<h3>%1</h3><table cellpadding=2>").arg(ToQt(section.Heading).toHtmlEscaped());
    for (const auto& [name, text] : section.Lines)
      html += QStringLiteral("<tr><td width=170>%1</td><td>%2</td></tr>")
                  .arg(ToQt(name).toHtmlEscaped(), ToQt(text).toHtmlEscaped());
    html += QStringLiteral("</table>");
  }
  return html;
}

QString WordsOf(const Failure& failure) {
  return failure.IsSilent() ? QString() : ScreenText(failure.Boxes().front().text);
}

/// Where a curve breaks off for want of a held level, at the last level before.
void MarkNotHeld(const std::vector<RunEntry>& rows, const Curve& curve, std::vector<CurveMark>& marks) {
  for (const int row : RowsThrough(RowFilter::NotHeld, rows)) {
    if (marks.size() >= kMostMarks) return;
    const double freq = std::get<StepEntry>(rows[static_cast<std::size_t>(row - 1)]).Freq;
    const CurvePoint* near = nullptr;
    for (const CurvePoint& point : curve.Points)
      if (std::isfinite(point.Value) && (point.Freq <= freq || !near)) near = &point;
    if (near) marks.push_back({{freq, near->Value}, "not held"});
  }
}

}  // namespace

frmRunData::frmRunData(Shell& shell, QWidget* parent)
    : WorkingForm(shell, parent),
      ui_(std::make_unique<Ui::frmRunData>()),
      thresholds_(
          {"Freq MHz", "Offset dB", "Level", "Comment"},
          [this](std::size_t index, std::size_t column) { return ThresholdCell(index, column); },
          [](std::size_t, std::size_t column) { return column == 3; }) {
  ui_->setupUi(this);
  ui_->flxTestData->setModel(&table_);
  ui_->grdThresholds->setModel(&thresholds_);
  new AlignedNumbers(*ui_->flxTestData, {{6}, {1, true}, {1}, {1, true}, {1, true}, {1}});
  ui_->splData->setStretchFactor(0, 3);
  ui_->splData->setStretchFactor(1, 2);
  ui_->splRows->setStretchFactor(0, 3);
  ui_->splRows->setStretchFactor(1, 2);
  // All columns beside the thresholds on a small screen.
  const int width = fontMetrics().horizontalAdvance(QStringLiteral("Meas dBuA")) * 5 / 4;
  for (QTableView* const view : {ui_->flxTestData, ui_->grdThresholds}) {
    view->horizontalHeader()->setDefaultSectionSize(width);
    view->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  }
  new TableCopy(*ui_->flxTestData);
  new TableCopy(*ui_->grdThresholds);
  ConnectMenus();
  ConnectRows();
  new FileDrop(this, QStringLiteral("run"),
               [this](const QString& file) { Guard("Drop", [&] { CompareWith(FromQt(file)); }); });
}

frmRunData::~frmRunData() = default;

void frmRunData::ConnectMenus() {
  OnAsking(ui_->mnuFileOpen, [this] { emit OpenRequested(); });
  OnAsking(ui_->mnuFileCompare, [this] { AskForOther(); });
  OnAsking(ui_->mnuFileReport, [this] { MakeReport(); });
  OnAsking(ui_->mnuFileExport, [this] { Export(); });
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpRun, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  auto* const units = new UnitsMenu(*ui_->mnuUnits, context_.Units);
  connect(units, &UnitsMenu::Chosen, this, [this] {
    ShowCurves();
    ShowThresholds();
    ui_->pagCompare->SetUnits(context_.Units);
  });
}

void frmRunData::OnAsking(QAction* entry, std::function<void()> command) {
  On(entry, [this, run = std::move(command)] {
    if (!shell_.InstrumentsClaimed()) return run();
    statusBar()->showMessage(
        QStringLiteral("Not while a run is on: it would wait for the answer. A file can be dropped onto this window."));
  });
}

void frmRunData::MakeReport() {
  frmReport(shell_, run_, this).exec();
}

/// What is written goes by the name's ending.
void frmRunData::Export() {
  const std::string filter = std::string("Table (*.csv)|*.csv|") + kCurvePictureFilter;
  const std::filesystem::path shown(run_.File);
  const auto path = shell_.dialogs.SaveFile(
      {"Export", filter, shown.parent_path().string(), shown.filename().replace_extension(".csv").string()});
  if (!path) return;
  if (!SameIgnoringCase(std::filesystem::path(*path).extension().string(), ".csv"))
    return SaveCurvePicture(shell_, *ui_->crvRun, *path);
  const MessageAnswer points =
      shell_.dialogs.Show({"Write numbers with a decimal point?\r\nNo: with a comma, and semicolons between the cells.",
                           "Export", MessageIcon::Question, MessageButtons::YesNoCancel});
  if (points == MessageAnswer::Cancel) return;
  const auto times = run_.Beside.Info ? run_.Beside.Info->RowTimes : std::map<int, std::string>();
  const DecimalSign sign = points == MessageAnswer::No ? DecimalSign::Comma : DecimalSign::Point;
  if (shell_.Ok(FileRunCsv(run_.Run.Data, times, sign, *path))) shell_.Saved(*path);
}

void frmRunData::ConnectRows() {
  connect(ui_->cboQuantity, &QComboBox::currentIndexChanged, this, &frmRunData::ShowCurves);
  connect(ui_->cboFilter, &QComboBox::currentIndexChanged, this, &frmRunData::ShowRows);
  connect(ui_->cmdFit, &QPushButton::clicked, ui_->crvRun, &CurveView::Fit);
  connect(ui_->chkLog, &QCheckBox::toggled, this, [this](bool log) {
    const FreqAxis axis = log ? FreqAxis::Log : FreqAxis::Linear;
    ui_->crvRun->SetFreqAxis(axis);
    ui_->pagCompare->SetFreqAxis(axis);
  });
  connect(ui_->flxTestData->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) { RowChosen(table_.RowAt(current.row())); });
  connect(ui_->grdThresholds->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (current.isValid()) ChooseRow(thresholdRows_[static_cast<std::size_t>(current.row())]);
          });
  connect(ui_->crvRun, &CurveView::PointChosen, this, [this](int curve, int point) {
    ChooseRow(curves_->RowOf(static_cast<std::size_t>(curve), static_cast<std::size_t>(point)));
  });
}

void frmRunData::LoadFile(const std::string& file) {
  Result<OpenedRun> opened = OpenRun(file);
  const QString trouble = opened ? QString() : WordsOf(opened.error());
  run_ = opened ? *std::move(opened) : OpenedRun{file, {}, {}};
  const RunUnitChoice units = context_.Units;
  context_ = run_.CurveContext();
  context_.Units = units;
  ShowRun();
  if (!trouble.isEmpty()) ShowTrouble(trouble);
}

void frmRunData::CompareWith(const std::string& file) {
  if (ui_->pagCompare->Others() >= RunComparison::kMostOthers)
    return ShowTrouble(
        QStringLiteral("%1 other runs can be compared: remove one first.").arg(RunComparison::kMostOthers));
  Result<OpenedRun> other = OpenRun(file);
  if (!other) return ShowTrouble(ToQt(file) + QLatin1Char('\n') + WordsOf(other.error()));
  const std::size_t notRead = other->Run.Troubles.size();
  ui_->pagCompare->Add(*std::move(other));
  ui_->tabPages->setCurrentWidget(ui_->pagCompare);
  if (notRead > 0)
    ShowTrouble(QStringLiteral("%1: %2 lines are not as they should be.").arg(ToQt(FileNameOnly(file))).arg(notRead));
}

void frmRunData::AskForOther() {
  FileRequest request = RunDataRequest(shell_.settings);
  request.title = "Compare with run";
  if (const auto file = shell_.dialogs.OpenFile(request)) CompareWith(*file);
}

void frmRunData::ShowTrouble(const QString& text) {
  QPalette red;
  red.setColor(QPalette::WindowText, HighlightRed(palette()));
  ui_->lblTrouble->setPalette(red);
  ui_->lblTrouble->setText(text);
  ui_->lblTrouble->setVisible(!text.isEmpty());
}

void frmRunData::ShowRun() {
  setWindowTitle(ToQt(FileNameOnly(run_.File)) + QStringLiteral(" - Run Data"));
  setToolTip({});
  ui_->lblNotice->hide();
  if (run_.Beside.Info && !run_.Beside.Info->Notice.empty())
    ShowBenchNotice(*ui_->lblNotice, "This run: " + run_.Beside.Info->Notice);
  const std::vector<std::string>& troubles = run_.Run.Troubles;
  QStringList told;
  if (!troubles.empty()) told << ToQt(troubles.front());
  if (troubles.size() > 1) told.last() += QStringLiteral(" %1 more: see Information.").arg(troubles.size() - 1);
  if (!run_.Beside.Trouble.empty()) told << ToQt(run_.Beside.Trouble);
  ShowTrouble(told.join(QLatin1Char('\n')));
  ui_->lblCounts->setText(ToQt(RowCounts(run_.Rows())));
  ui_->txtInfo->setHtml(HtmlOf(InfoSections(run_)));
  ShowThresholds();
  ShowRows();
  ShowCurves();
  ui_->pagCompare->Begin(run_);
}

void frmRunData::ShowRows() {
  QTableView& view = *ui_->flxTestData;
  view.clearSpans();
  const auto filter = static_cast<RowFilter>(ui_->cboFilter->currentIndex());
  table_.Show(run_.Rows(), filter);
  if (thresholdRows_.size() <= kMostMarks)
    for (int shown = 0; shown < table_.rowCount(); ++shown)
      if (table_.IsThreshold(shown)) view.setSpan(shown, kCommentColumn, 1, table_.columnCount() - kCommentColumn);
  ui_->lblShown->setText(filter == RowFilter::All ? QString() : QStringLiteral("%1 shown").arg(table_.rowCount()));
}

void frmRunData::ShowThresholds() {
  thresholds_.RowChanged(0);
  thresholdRows_ = RowsThrough(RowFilter::Thresholds, run_.Rows());
  if (!thresholdRows_.empty()) thresholds_.RowChanged(static_cast<int>(thresholdRows_.size()));
  ui_->fraThresholds->setVisible(!thresholdRows_.empty());
}

std::string frmRunData::ThresholdCell(std::size_t index, std::size_t column) const {
  const std::vector<RunEntry>& rows = run_.Rows();
  const auto at = [&rows](int row) -> const RunEntry& { return rows[static_cast<std::size_t>(row - 1)]; };
  const auto& threshold = std::get<ThresholdEntry>(at(thresholdRows_[index]));
  if (column == 0) return CellsOf(threshold).front();
  if (column == 1) return Format(threshold.OffsetDb, "#0.0");
  if (column == 3) return threshold.Comment;
  const int step = StepRowOf(rows, thresholdRows_[index]);
  if (step == 0) return "not known";
  const StepResult& applied = *std::get<StepEntry>(at(step)).Result;
  if (StayedBelow(applied.Marks) || IsMissing(applied.TestLevel)) return "not known";
  const double level = static_cast<double>(applied.TestLevel) + threshold.OffsetDb;
  const RunUnit unit = context_.Units.TestLevel;
  return ShowTestLevel(level, unit, context_.ImpedanceOhms).Value + " " + NameOf(unit);
}

void frmRunData::ShowCurves() {
  curves_ =
      std::make_unique<RunCurves>(static_cast<RunQuantity>(ui_->cboQuantity->currentIndex()), context_, run_.Rows());
  std::vector<Curve> shown = curves_->Curves();
  std::vector<CurveMark> marks = curves_->Marks();
  if (marks.size() > kMostMarks) marks.clear();
  MarkNotHeld(run_.Rows(), shown.front(), marks);
  ui_->crvRun->SetCurrent(std::nullopt);
  ui_->crvRun->SetCurves(std::move(shown));
  ui_->crvRun->SetLimits(curves_->Limits());
  ui_->crvRun->SetMarks(std::move(marks));
  RowChosen(table_.RowAt(ui_->flxTestData->currentIndex().row()));
}

void frmRunData::ChooseRow(int row) {
  if (row == 0) return;  // of an aim
  if (table_.PlaceOf(row) < 0) ui_->cboFilter->setCurrentIndex(static_cast<int>(RowFilter::All));
  const QModelIndex cell = table_.index(table_.PlaceOf(row), 0);
  ui_->flxTestData->setCurrentIndex(cell);
  ui_->flxTestData->scrollTo(cell, QAbstractItemView::PositionAtCenter);
}

void frmRunData::RowChosen(int row) {
  const auto place = curves_ ? curves_->PlaceOf(StepRowOf(run_.Rows(), row)) : std::nullopt;
  std::optional<CurvePlace> ringed;
  if (place) ringed = CurvePlace{static_cast<int>(place->first), static_cast<int>(place->second)};
  ui_->crvRun->SetCurrent(ringed);
  statusBar()->showMessage(ringed ? ui_->crvRun->ReadoutOf(*ringed) : QString());
}

void frmRunData::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && shell_.InstrumentsClaimed())
    emit EscapePressed();
  else
    WorkingForm::keyPressEvent(event);
}

}  // namespace hylden
