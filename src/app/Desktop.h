#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>
#include <functional>
#include <memory>
#include <string>

class QWidget;

namespace hylden {

class BenchWindows;
class JournalFolder;
class RunCablCal;
class RunSetupForm;
class Shell;
class Station;
class TopMenu;
class DefinitionForm;
class WorkingForm;
class frmBus;
class frmCalSetup;
class frmCalCurves;
class frmEquipment;
class frmHelp;
class frmTestDef;
struct CommandLine;
class frmRunData;
struct Documents;
struct Instruments;
struct ResumedJournal;
enum class CurveKind;
enum class FactorKind;
enum class InstrumentKind;

/// What the desktop program brings along from its machine.
struct DesktopOptions {
  /// Called when the program has been asked to end: boxes on the screen have to give way.
  std::function<void()> onEnding = {};
  /// Runs a print command with the preview window in the printer's place.
  std::function<void(const std::function<void()>& print)> preview = {};
  /// Where runs keep their rows: what an earlier program has left there is offered at the start.
  JournalFolder* journals = nullptr;
};

/// The windows of the program and who opens what: forms tell by signals what they want, and are connected here. When a
/// simulated bench stands for the bus, every window says so, its panel can be opened, and it is cabled as each run
/// needs it.
class Desktop : public QObject {
  Q_OBJECT

 public:
  explicit Desktop(Station& station, DesktopOptions options = {});
  ~Desktop() override;

  /// Start-up from the command line to the first window.
  /// @return false when the program has been asked to end meanwhile
  bool Start(const std::string& commandLine);

  /// The program was started once more: its front window is raised, and opens the files that are named as if they were
  /// chosen there.
  /// @return why not, for the one who started it; empty when it does
  std::string StartedAgain(const std::string& commandLine);

  TopMenu& Menu() { return *menu_; }
  /// Opens the equipment form in the caller's place; modally above it when a check has found something to mend there.
  /// Null while the program is being ended.
  frmEquipment* OpenEquipment(QWidget* caller, int tab = 0, bool modal = false);
  /// Opens the editor of an instrument's definition in the place of the equipment form, which takes what is loaded and
  /// saved there.
  void OpenDefinition(frmEquipment* equipment, InstrumentKind kind);
  /// Opens the parse tester above the editor, which gets the expression that is saved there.
  void OpenParseTester(DefinitionForm* editor, const QString& answer, const QString& expression);
  /// Opens the test definition; its Start opens the test run. Null while the program is being ended.
  frmTestDef* OpenTestDefinition();
  /// Opens the test run in the caller's place.
  void OpenTestRun(QWidget* caller);
  /// Opens the calibration setup; its Start opens the calibration run. Null while the program is being ended.
  frmCalSetup* OpenCalibrationSetup();
  /// Opens the level calibration in the caller's place.
  void OpenCalibrationRun(QWidget* caller);
  /// Opens the editor of factor files in the caller's place, with a file if one is named.
  void OpenFactorEditor(QWidget* caller, FactorKind kind, const QString& file = {});
  /// Opens the insertion-loss setup in the caller's place; its Start opens the two passes.
  void OpenCableSetup(QWidget* caller);
  /// Shows the curves of a file, or of one that is asked for, beside a form, and no longer than the form can be seen.
  void ShowCurves(RunSetupForm* form, CurveKind kind, const QString& file);
  /// Shows the window of the bus, beside the windows of the work.
  void ShowBus();
  /// Shows a saved run in a window of its own, beside the windows of the work.
  void OpenRunData(const std::string& file);
  /// Asks for one.
  void ChooseRunData();
  /// Opens the list builder above a form that sets up a run; the list composed there becomes the form's.
  void OpenListBuilder(RunSetupForm* form, const QString& listFile);
  /// Connects a form to what every form may ask for, and shows it in the caller's place.
  /// @return false while the program is being ended: nothing is opened then
  bool Open(WorkingForm* form, QWidget* caller);
  /// Shows the manual, beside the windows of the work.
  void ShowHelp(const QString& topic);
  /// Shows the bench panel, beside the windows of the work; nothing without a bench.
  void ShowBenchPanel();
  /// Shows what the command prints in the preview window; prints it where there is no preview.
  void Preview(const std::function<void()>& print);

  /// Asks for the end of the program: halts what runs, has boxes give way, switches RF off, and closes every window as
  /// its close box would, behind the command that it is busy with, the main menu last. A window that asks something
  /// first is waited for; one that stays open refuses the end, and the program runs as before.
  void CloseAll();

  /// Escape was pressed in some message box.
  void EscapeInBox() { emit EscapePressed(); }

 signals:
  /// A run takes it as Halt.
  void EscapePressed();
  /// The main menu has closed.
  void Ended();

 private:
  /// Opens the window of the run that is to be continued, as its test or setup would.
  void Resume();
  void ResumeTest();
  void ResumeCalibration(const std::string& setup);
  void ShowWelcome();
  WorkingForm* Front() const;
  void Raise();
  void OpenNamed(const CommandLine& line);
  /// The main menu says which station and test are loaded.
  void ShowStation();
  void ClearBoxes();
  void RefuseEnd(const WorkingForm& form);
  void Applied(const frmEquipment* form);
  void Serve(RunSetupForm* form);
  void OpenCableRun(QWidget* caller);
  bool LoadHelp();
  void EscapeInPanel();
  void KeepBeside();
  void CloseNext();

  Station& station_;
  Shell& shell_;
  Instruments& instruments_;
  Documents& documents_;
  DesktopOptions options_;
  std::unique_ptr<TopMenu> menu_;
  std::unique_ptr<BenchWindows> bench_;
  std::unique_ptr<frmHelp> help_;  ///< from its first opening on
  const std::string helpFile_;
  QVector<QPointer<WorkingForm>> open_;
  QPointer<frmBus> bus_;                          ///< one of them
  std::unique_ptr<ResumedJournal> resumed_;       ///< for the run window that is opened next
  QPointer<frmCalCurves> curves_;                 ///< another one
  QPointer<RunSetupForm> curvesOf_;               ///< the form beside which they stand
  std::unique_ptr<RunCablCal> cableCalibration_;  ///< its setup and points outlive the forms
};

}  // namespace hylden
