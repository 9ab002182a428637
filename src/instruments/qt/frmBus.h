#pragma once

#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "instruments/BusPanel.h"
#include "shell/qt/WorkingForm.h"

namespace hylden {

namespace Ui {
class frmBus;
}

/// The bus: who stands at which address and how it is reached, commands by hand, and a live trace of all that goes over
/// it. It stands beside the work: while somebody else has the instruments it shows the trace only.
class frmBus : public WorkingForm {
  Q_OBJECT

 public:
  /// @param units  what the station has on the bus now
  frmBus(Shell& shell, Instruments& instruments, std::function<std::vector<BusUnit>()> units,
         QWidget* parent = nullptr);
  ~frmBus() override;

  /// Shows what has come since; it does so by itself a few times a second while it can be seen.
  void Refresh();

  /// Ends the RF that may have been switched on here; does nothing while somebody else has the instruments.
  void PressHalt();

  bool StandsBeside() const override { return true; }
  QString HelpTopic() const override { return QStringLiteral("The bus"); }

 signals:
  /// Escape was pressed while somebody else has the instruments.
  void EscapePressed();

 protected:
  bool QueryUnload() override;
  void CommandEnded() override { Refresh(); }
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectCommands();
  void ConnectTrace();
  /// Runs a command at the press of a button and shows what it came to.
  void OnBus(QAbstractButton* button, std::function<BusPanel::Outcome()> command);
  void TakeAddress(int address);
  int Address() const;
  LineEnd End() const;
  void ShowOutcome(const BusPanel::Outcome& outcome);
  void ShowState();
  void ShowUnits();
  void ShowTrace();
  void SaveTrace();

  BusPanel panel_;
  std::function<std::vector<BusUnit>()> units_;
  std::unique_ptr<Ui::frmBus> ui_;
  std::vector<QWidget*> commands_;
  std::uint64_t shownFrom_ = 0, shownTo_ = 0;  ///< events of the trace
  bool told_ = false;                          ///< the state is that of a command
  QTimer watch_;
};

}  // namespace hylden
