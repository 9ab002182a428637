#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "testrun/ManualPanel.h"
#include "testrun/qt/ArrowKeyHook.h"

class QCloseEvent;
class QKeyEvent;

namespace hylden {

class Shell;
struct ManualStart;
namespace Ui {
class frmManual;
}

/// Manual mode: step and level by scroll bars and arrow keys, switches for RF and modulation, thresholds. It stands
/// above all other windows. Step and level go to the run at the pace of Timer1.
class frmManual : public QWidget {
  Q_OBJECT

 public:
  frmManual(Shell& shell, ManualMode& mode, QWidget* parent = nullptr);
  ~frmManual() override;

  /// Shows the form without taking the focus, catches the arrow keys and starts the timer.
  /// @param place  where it was left, as the settings keep it
  void Open(const ManualStart& start, const std::string& place);
  /// Gives the arrow keys free, stops the timer, and goes. RF is on: the settings, which may lie on a share that
  /// stalls, have to wait. @return its place, as the settings keep it
  std::string Unload();

  /// The frequency in MHz.
  void SetManualFreq(double frequencyMHz);
  /// Whether RF is on.
  void SetRfOn(bool on);
  /// Whether the modulation is on.
  void SetModOn(bool on);
  /// Shows the notice of the simulated bench.
  void SetSimulated();

 signals:
  void manThresholdClick(double frequencyMHz, float offsetDb);
  void manExitClick();
  void manRfOn(bool on);
  void manModOn(bool on);
  /// Its Halt was pressed.
  void HaltClick();
  void HelpRequested();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void Tick();
  void NoteThreshold();
  void ShowScroll();
  void ShowOffset(int tenths);

  Shell& shell_;
  std::unique_ptr<Ui::frmManual> ui_;
  ManualPanel panel_;
  ArrowKeyHook hook_;
  QTimer timer1_{this};
};

}  // namespace hylden
