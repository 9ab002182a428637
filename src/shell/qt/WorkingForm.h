#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QString>

class QCloseEvent;
class QKeyEvent;
class QLabel;
class QToolBar;

namespace hylden {

/// A window that one opens from another: when it unloads, the form that opened it is shown again.
/// A form shows and asks; it never opens another form itself, but tells by a signal what is wanted.
class WorkingForm : public QMainWindow {
  Q_OBJECT

 public:
  explicit WorkingForm(QWidget* parent = nullptr);

  /// The form to show again when this one unloads.
  QPointer<QWidget> CallingForm;

  /// Shows this form in the place of the one that opened it; a modal form stands above a caller that is not modal.
  void OpenFrom(QWidget* caller);

  /// The program ends: entries that can't be taken hold the form open no longer. Call it before closing it.
  void EndWithProgram() { programEnds_ = true; }

  /// The heading of the help file that F1 opens; empty for its beginning.
  virtual QString HelpTopic() const { return {}; }

 signals:
  void HelpRequested(const QString& topic);
  /// The form has closed and its caller is shown again.
  void Unloaded();

 protected:
  /// Whether the form may close now; what has to be done before is done here.
  virtual bool QueryUnload() { return true; }

  bool ProgramEnds() const { return programEnds_; }

  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool programEnds_ = false;
};

/// A band across the top of a window that tells, unmistakably, that no real instrument is driven.
/// @return the band, which has room for more; there is one to a window
QToolBar& ShowBenchNotice(QMainWindow& window);
/// The same on a window that has a label for it.
void ShowBenchNotice(QLabel& notice);

}  // namespace hylden
