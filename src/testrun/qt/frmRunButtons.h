#pragma once

#include <QPoint>
#include <QWidget>
#include <memory>

class QCloseEvent;
class QKeyEvent;
class QPushButton;

namespace hylden {

class Shell;
namespace Ui {
class frmRunButtons;
}

/// The buttons Run, Halt, Manual and Exit of a test run. Until a mode is set only Exit can be pressed.
class frmRunButtons : public QWidget {
  Q_OBJECT

 public:
  explicit frmRunButtons(Shell& shell, QWidget* parent = nullptr);
  ~frmRunButtons() override;

  /// Hides the form, remembering its place, and shows it there again.
  void ButtonsVisible(bool visible);
  /// A run is in progress: Escape presses Halt.
  void SetRunMode();
  /// Ready: Escape presses Exit, Enter presses Run.
  void SetHaltMode();
  /// Halt was pressed: it stays visible, and nothing can be pressed.
  void SetHalting();
  /// Shows the notice of the simulated bench.
  void SetSimulated();
  /// Keeps the place in the settings, and goes.
  void Unload();

 signals:
  void ExitClick();
  void ManualClick();
  void RunClick();
  void HaltClick();
  void HelpRequested();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QPushButton& DefaultButton() const;

  Shell& shell_;
  std::unique_ptr<Ui::frmRunButtons> ui_;
  QPoint place_;
};

}  // namespace hylden
