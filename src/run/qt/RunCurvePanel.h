#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "run/RowCurves.h"

class QCheckBox;
class QComboBox;
class QTableView;

namespace hylden {

class CurveView;

/// Where a run window has its curves from. Rows are counted from 1.
struct CurveSource {
  /// A quantity that can be shown: its name on the screen and, unchanging, in the settings.
  struct Quantity {
    const char* Name;
    const char* Key;
  };
  std::vector<Quantity> Quantities;
  /// The curves of a quantity with all rows so far; they stay until the next call.
  std::function<const RowCurves&(std::size_t quantity)> Make;
  /// Takes over a row that was added or has changed, and returns the points that are new.
  std::function<std::vector<RowCurves::Added>(int row)> Add;
};

/// The curves of a run beside its table: a click on a point goes to its row, and the table's current row is ringed.
/// What the run tells is only noted; it is drawn a moment later, while the run waits.
class RunCurvePanel : public QWidget {
  Q_OBJECT

 public:
  explicit RunCurvePanel(QWidget* parent = nullptr);

  /// @param table  has its model; rows and points go together
  void SetSource(CurveSource source, QTableView& table);

  // What the run tells. None of these fails or takes time.
  /// The row is there or has changed; 0: there are none any more.
  void RowChanged(int row);
  /// The frequency at work, MHz; nothing between two runs.
  void SetFrequency(std::optional<double> frequencyMHz);
  /// What is left of the wait that the run is in, seconds.
  void SetTimeLeft(double seconds);
  /// All curves have changed: units, aims.
  void Renew() { RowChanged(0); }

  /// What the operator has chosen, for the settings: quantity and axis.
  std::string Quantity() const;
  void SetQuantity(const std::string& key);
  bool IsLog() const;
  void SetLog(bool log);
  CurveView& View() { return view_; }

 private:
  void SetUpBar();
  void DrawWhenThereIsTime();
  void Draw();
  void AddRows();
  void ShowRing();
  void GoToRow(int row);

  CurveView& view_;
  QComboBox& quantity_;
  QCheckBox& log_;
  QTableView* table_ = nullptr;
  CurveSource source_;
  const RowCurves* curves_ = nullptr;
  QTimer timer_{this};
  QElapsedTimer sinceDrawn_, sinceTold_;
  double secondsLeft_ = 0;
  int firstRow_ = 0, lastRow_ = 0;  ///< to be taken over; 0: none
  bool renew_ = true;
  std::optional<double> frequencyMHz_;
};

}  // namespace hylden
