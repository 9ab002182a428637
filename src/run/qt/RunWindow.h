#pragma once

#include <QTimer>
#include <functional>
#include <string_view>
#include <vector>

#include "run/RunDisplay.h"
#include "shell/qt/WorkingForm.h"
#include "widgets/EscapeWatch.h"
#include "widgets/WindowPlace.h"

class QAbstractButton;
class QAction;
class QGridLayout;
class QLabel;
class QMenu;
class QProgressBar;
class QSplitter;
class QTableView;

namespace hylden {

class RfLamp;
class RowTable;
class RunCurvePanel;
class SigGen;
class TableFollower;
class UnsavedRows;

/// The window of a run: figures, progress, table and curves, status bar, and the run itself inside the press of a
/// button. Escape halts it; closing the window during it halts it, lets it end in order, then closes. Its caption
/// tells, also while it is minimised, where the run is. What a form has of its own it adds by overriding.
class RunWindow : public WorkingForm, public HasTightLayout, protected RunDisplay {
  Q_OBJECT

 public:
  RunWindow(Shell& shell, SigGen& sigGen, QWidget* parent);

  /// Halts the run as its button does; nothing when there is none.
  void PressHalt();
  bool AsksToSave() const override;
  bool SaveMissed() const override;
  /// All big figures in one row, as in any low window, so that Halt stays in sight.
  void Tighten() override;

 protected:
  /// A readout of the run: where it is shown, and how it is written.
  struct Figure {
    Readout Of;
    QLabel* Label;
    std::string_view Pattern;
  };
  struct Controls {
    /// Those that have the same name in every form of a run.
    template <class Ui>
    static Controls Of(const Ui& ui) {
      return {.FigureGrid = ui.layFigures,
              .Countdown = ui.lblCountdown,
              .Step = ui.lblStep,
              .Steps = ui.lblSteps,
              .State = ui.lblState,
              .Rf = ui.lblRf,
              .Progress = ui.prgSteps,
              .Split = ui.splRun,
              .Curves = ui.pnlCurves,
              .File = ui.mnuFile,
              .Picture = ui.mnuFilePicture,
              .Exit = ui.mnuFileExit,
              .Help = ui.mnuHelpRun};
    }

    QGridLayout* FigureGrid;
    QLabel *Countdown, *Step, *Steps, *State;
    RfLamp* Rf;
    QProgressBar* Progress;
    QSplitter* Split;
    RunCurvePanel* Curves;
    QMenu* File;
    QAction *Picture, *Exit, *Help;

    QLabel *Start = nullptr, *Stop = nullptr;
    QLabel* Dwell = nullptr;  ///< of every step; may be missing
    QTableView* Table = nullptr;
    QAbstractButton* Halt = nullptr;
    std::vector<QWidget*> Idle = {};  ///< only of use between two runs
    std::vector<Figure> Figures = {};
  };
  /// A part of the status bar.
  struct Panel {
    const char* Name;
    const char* Meaning;
    bool TellsStep = false;  ///< it shows the number of the step in work
  };

  /// To be called once the controls are there.
  void SetUp(Controls controls, RowTable& table, UnsavedRows& rows,
             const Panel& panel = {"pnlStep", "The step in work", true});
  /// Has the window open as it was left; to be called behind SetUp.
  /// @param windowKey  its section in the settings
  void RestoreLayout(std::string_view windowKey);
  /// What the caption begins with.
  void SetCaption(const QString& caption);
  /// Runs, with Escape watched and the RF lamp kept true. Nothing happens inside another run of this window.
  void RunFrom(const std::function<void()>& run);
  /// Forgets the figures of the run before.
  virtual void StartAfresh();
  /// Running: only Halt can be pressed. Otherwise a run can be started, and what was recorded saved.
  virtual void SetRunning(bool running);
  /// What the window shows of the step at work.
  virtual QString StepText(int step) const { return QString::number(step); }
  /// Halt was pressed.
  virtual void Halt();
  /// Whether Escape there halts the run.
  virtual bool IsOurs(const QWidget& window) const { return &window == this; }

  void EnableFile(bool enabled);
  void ShowStatus(const QString& statusBar, const QString& state);
  void ShowPanel(const QString& text);
  /// Moves the progress bar to this step, unless it goes by time.
  void ShowProgress(int step);
  void ShowRf();
  void ClearCountdown();
  void AskForHelp() { emit HelpRequested(HelpTopic()); }
  TableFollower& Follower() { return *follower_; }
  RunCurvePanel& Curves() { return *controls_.Curves; }

  bool QueryUnload() override;
  void resizeEvent(QResizeEvent* event) override;
  void Hurry() override;

  // The display.
  void Phase(RunPhase phase) override;
  void Status(const std::string& text) override;
  void Note(const std::string& text) override;
  void Plan(const RunPlan& plan) override;
  void Ahead(const RunAhead& ahead) override;
  void Countdown(double seconds) override;
  void Step(int step) override;
  void StepDone(int step) override;
  void Show(Readout readout, std::optional<double> value) override;
  void RowChanged(int row) override;

 private:
  void ArrangeFigures(bool inOneRow);
  QLabel* MakePanel(const Panel& panel);
  void SetUpStatusBar(const Panel& panel);
  void SavePicture();
  void ShowBusy(bool busy);
  void ShowCaption();
  void ShowTimes();

  SigGen& sigGen_;
  Controls controls_ = {};
  RowTable* table_ = nullptr;
  UnsavedRows* rows_ = nullptr;
  TableFollower* follower_ = nullptr;
  QLabel* statusPanel_ = nullptr;
  QLabel* panel_ = nullptr;
  bool panelTellsStep_ = false;
  QLabel* notePanel_ = nullptr;
  QLabel* dwellPanel_ = nullptr;
  std::string_view layoutKey_;
  QString caption_;
  int step_ = 0, steps_ = 0;  ///< at work, and of the whole run
  std::optional<double> elapsedMinutes_, remainingMinutes_;
  QLabel* timePanel_ = nullptr;
  int stepsDone_ = 0;
  bool figuresInOneRow_ = false;
  int figuresShare_ = 2;  ///< of the height, in the arrangement that they don't have
  bool byTime_ = false;   ///< the progress bar goes by time
  EscapeWatch escape_;
  QTimer rfWatch_{this};  ///< RF can go off under a message box
  bool running_ = false;  ///< only Halt can be pressed
  bool busy_ = false;     ///< the wait cursor is shown
  bool inRun_ = false;    ///< the press that started a run has not returned yet
};

}  // namespace hylden
