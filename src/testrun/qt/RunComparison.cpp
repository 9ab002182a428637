#include "testrun/qt/RunComparison.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <utility>

#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "testrun/RunCompare.h"
#include "widgets/CurveView.h"

namespace hylden {

namespace {

/// What runs can be compared in: a curve of a quantity.
struct Compared {
  const char* Name;
  RunQuantity Quantity;
  std::size_t Curve;
};
constexpr Compared kCompared[] = {
    {"Test level", RunQuantity::TestLevel, 0},    {"Generator level", RunQuantity::Generator, 0},
    {"Induced current", RunQuantity::Induced, 0}, {"Forward power", RunQuantity::Power, 0},
    {"Reverse power", RunQuantity::Power, 1},     {"Net power", RunQuantity::Power, 2}};
constexpr int kFirstShown = 1;  ///< the generator's level is in every file

CurveView* MakeView(QSplitter& splitter, const char* name, const char* words) {
  auto* const view = new CurveView;
  view->setObjectName(QLatin1String(name));
  view->setAccessibleName(QLatin1String(words));
  view->setMinimumHeight(100);
  splitter.addWidget(view);
  return view;
}

QTableWidgetItem* Item(const std::string& text, const std::string& toolTip) {
  auto* const item = new QTableWidgetItem(ToQt(text));
  item->setToolTip(ToQt(toolTip).toHtmlEscaped());
  return item;
}

}  // namespace

RunComparison::RunComparison(QWidget* parent)
    : QWidget(parent), quantity_(new QComboBox), runs_(new QTableWidget(0, 2)) {
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(MakeBar());
  auto* const splitter = new QSplitter(Qt::Vertical);
  splitter->setChildrenCollapsible(false);
  values_ = MakeView(*splitter, "crvValues", "Curves of all runs");
  differences_ = MakeView(*splitter, "crvDifferences", "Differences to the first run");
  layout->addWidget(splitter, 1);
  Link(*values_, *differences_);
  Link(*differences_, *values_);
  runs_->setObjectName(QStringLiteral("grdRuns"));
  runs_->setHorizontalHeaderLabels({QStringLiteral("Run"), QStringLiteral("Difference to the first")});
  runs_->horizontalHeader()->setStretchLastSection(true);
  runs_->verticalHeader()->hide();
  runs_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  runs_->setSelectionBehavior(QAbstractItemView::SelectRows);
  runs_->setSelectionMode(QAbstractItemView::SingleSelection);
  runs_->setTabKeyNavigation(false);
  runs_->setFixedHeight(runs_->fontMetrics().height() * 8);
  runs_->setAccessibleName(QStringLiteral("Runs that are compared"));
  layout->addWidget(runs_);
}

QWidget* RunComparison::MakeBar() {
  auto* const bar = new QWidget;
  auto* const layout = new QHBoxLayout(bar);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(QStringLiteral("&Curves of"));
  label->setBuddy(quantity_);
  quantity_->setObjectName(QStringLiteral("cboCompared"));
  for (const Compared& compared : kCompared) quantity_->addItem(QLatin1String(compared.Name));
  quantity_->setCurrentIndex(kFirstShown);
  connect(quantity_, &QComboBox::currentIndexChanged, this, &RunComparison::Show);
  auto* const remove = new QPushButton(QStringLiteral("Re&move"));
  remove->setObjectName(QStringLiteral("cmdRemove"));
  remove->setToolTip(QStringLiteral("Takes the run chosen below out of the comparison"));
  connect(remove, &QPushButton::clicked, this, &RunComparison::Remove);
  layout->addWidget(label);
  layout->addWidget(quantity_);
  layout->addStretch();
  layout->addWidget(remove);
  return bar;
}

/// What is zoomed in one view is looked for in the other one.
void RunComparison::Link(CurveView& view, CurveView& other) {
  connect(&view, &CurveView::FrequenciesChosen, &other, [&view, &other] {
    const QSignalBlocker silent(other);  // or it would answer
    if (view.IsZoomed())
      other.ShowFrequencies(view.LowestShown().Freq, view.HighestShown().Freq);
    else
      other.Fit();
  });
}

void RunComparison::Begin(const OpenedRun& run) {
  first_ = &run;
  others_.clear();
  Show();
}

void RunComparison::Add(OpenedRun run) {
  others_.push_back(std::move(run));
  Show();
}

void RunComparison::SetUnits(const RunUnitChoice& units) {
  units_ = units;
  Show();
}

void RunComparison::SetFreqAxis(FreqAxis axis) {
  for (CurveView* const view : {values_, differences_}) view->SetFreqAxis(axis);
}

void RunComparison::Remove() {
  const int row = runs_->currentRow();
  if (row < 1) return;  // the first one stays
  others_.erase(others_.begin() + (row - 1));
  Show();
}

/// Runs are told apart by their numbers: files in several directories may have one name.
Curve RunComparison::CurveOf(const OpenedRun& run, std::size_t number) const {
  const Compared& compared = kCompared[quantity_->currentIndex()];
  RunCurveContext context = run.CurveContext();
  context.Units = units_;
  const RunCurves curves(compared.Quantity, std::move(context), run.Rows());
  Curve curve = curves.Curves()[compared.Curve];
  curve.Name = std::to_string(number);
  return curve;
}

void RunComparison::Show() {
  std::vector<Curve> values, differences;
  runs_->setRowCount(0);
  const auto add = [&](const OpenedRun& run) {
    const int row = runs_->rowCount();
    values.push_back(CurveOf(run, static_cast<std::size_t>(row) + 1));
    CurveDifference difference = DifferenceOf(values.back(), values.front());
    runs_->insertRow(row);
    runs_->setItem(row, 0, Item(values.back().Name + "  " + FileNameOnly(run.File), run.File));
    runs_->setItem(row, 1, row == 0 ? Item("the first", {}) : Item(DifferenceText(difference), {}));
    // The first one is the line of 0, so that each run has the same colour in both.
    differences.push_back(std::move(difference.Values));
  };
  if (first_) add(*first_);
  for (const OpenedRun& run : others_) add(run);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i].Name += "  " + FileNameOnly(i == 0 ? first_->File : others_[i - 1].File);
  runs_->resizeColumnToContents(0);
  values_->SetCurves(std::move(values));
  differences_->SetCurves(std::move(differences));
}

}  // namespace hylden
