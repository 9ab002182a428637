#pragma once

#include <QWidget>
#include <vector>

#include "testrun/OpenedRun.h"

class QComboBox;
class QTableWidget;

namespace hylden {

class CurveView;

/// Runs laid over each other, and below them how far each lies above the first one.
class RunComparison : public QWidget {
  Q_OBJECT

 public:
  static constexpr std::size_t kMostOthers = 5;

  explicit RunComparison(QWidget* parent = nullptr);

  /// The run that the others are compared with; they go with it.
  /// @param run  has to outlive this, or its next Begin
  void Begin(const OpenedRun& run);
  /// @pre there are fewer than kMostOthers
  void Add(OpenedRun run);
  std::size_t Others() const { return others_.size(); }
  void SetUnits(const RunUnitChoice& units);
  void SetFreqAxis(FreqAxis axis);

 private:
  QWidget* MakeBar();
  static void Link(CurveView& view, CurveView& other);
  void Show();
  Curve CurveOf(const OpenedRun& run, std::size_t number) const;
  void Remove();

  const OpenedRun* first_ = nullptr;
  std::vector<OpenedRun> others_;
  RunUnitChoice units_;
  QComboBox* quantity_;
  QTableWidget* runs_;
  CurveView *values_, *differences_;
};

}  // namespace hylden
