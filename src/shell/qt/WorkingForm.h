#pragma once

#include <QMainWindow>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>
#include <string>
#include <string_view>

class QAbstractButton;
class QAction;
class QCloseEvent;
class QKeyEvent;
class QLabel;
class QToolBar;

namespace hylden {

class Shell;

/// A window that one opens from another: when it unloads, the form that opened it is shown again.
/// A form shows and asks; it never opens another form itself, but tells by a signal what is wanted.
/// What it does on a press or a choice is a command. A form does not close while one of its commands runs, also not
/// between two boxes: the close is done when the command has ended.
class WorkingForm : public QMainWindow {
  Q_OBJECT

 public:
  explicit WorkingForm(Shell& shell, QWidget* parent = nullptr);

  /// The form to show again when this one unloads.
  QPointer<QWidget> CallingForm;

  /// Shows this form over the one that opened it, in its place, as large as it was last; a modal form stands above a
  /// caller that is not modal. When it unloads the caller is where it was.
  void OpenFrom(QWidget* caller);

  /// Runs a command, unless the program is being ended. What it could not foresee is reported, since nothing may leave
  /// an event handler; a run that is on is halted then.
  /// @param name  of the control, for the report
  void Guard(std::string_view name, const std::function<void()>& command);

  /// Tells for some seconds, or until the next command, that a file was saved.
  void ShowSaved(const std::string& path);

  /// A command runs, or the question whether to close stands.
  bool IsBusy() const { return commands_ > 0; }
  /// Has a busy form close when its command has ended; a run is halted. Does nothing to another one.
  void CloseBehindCommand();
  /// Takes that back.
  void ForgetClose() { closePending_ = false; }
  /// A question about saving what was measured stands on the screen: it may not be taken away.
  virtual bool AsksToSave() const { return false; }
  /// What was to be saved is not: the form does not close behind the command that has missed it.
  virtual bool SaveMissed() const { return false; }

  /// Whether it is looked at beside the form that the operator works in, also a modal one; it goes with the main menu.
  virtual bool StandsBeside() const { return false; }
  /// The heading of the help file that F1 opens; empty for its beginning.
  virtual QString HelpTopic() const { return {}; }

 signals:
  void HelpRequested(const QString& topic);
  /// The form has closed and its caller is shown again.
  void Unloaded();
  /// The form was asked to close and stays open.
  void StaysOpen();

 protected:
  /// Whether the form may close now; what has to be done before is done here. No command runs then.
  virtual bool QueryUnload() { return true; }
  /// A close waits for the command that runs.
  virtual void Hurry() {}
  /// The last of the running commands has ended.
  virtual void CommandEnded() {}

  /// Runs the command, guarded, whenever the control is chosen or pressed.
  void On(QAction* entry, std::function<void()> command);
  void On(QAbstractButton* button, std::function<void()> command);

  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

  Shell& shell_;

 private:
  void Run(std::string_view name, const std::function<void()>& command);
  bool MayClose();
  void CloseIfPending();
  void ShowPassing(const QString& text);

  int commands_ = 0;  ///< that have not returned yet
  bool closePending_ = false;
  bool missedBefore_ = false;  ///< the save, when the close was asked for
  QTimer passing_{this};       ///< the news of a save
  QPoint callerPlace_;         ///< of its contents, when it was hidden
};

/// A band across the top of a window that tells, unmistakably, which instruments are only simulated.
/// @param words  Shell::runNotice
/// @return the band, which has room for more; there is one to a window
QToolBar& ShowBenchNotice(QMainWindow& window, const std::string& words);
/// The same on a window that has a label for it.
void ShowBenchNotice(QLabel& notice, const std::string& words);

}  // namespace hylden
