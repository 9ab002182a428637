#pragma once

#include <functional>
#include <string>

#include "shell/qt/SetupForm.h"

class QLabel;
class QTimer;

namespace hylden {

struct StartFailure;
enum class CurveKind;

/// What the forms that set up a run have in common: a frequency list, and the way to the run.
class RunSetupForm : public SetupForm {
  Q_OBJECT

 public:
  /// What entries define, in a line: how many frequencies and how long they take, or why there are none.
  using PlanTeller = std::function<std::string(const FormEntries&)>;
  /// From now on the status bar tells that of the form's entries, as they are typed.
  void TellPlanBy(PlanTeller teller);
  /// Tells it now.
  void ShowPlan();

  /// Makes a file the frequency list; one that does not read as a list is refused.
  virtual void UseList(const QString& path) = 0;

 signals:
  /// The list builder is wanted; the list composed there comes back through UseList.
  void CreateListRequested(const QString& listFile);
  /// The station lacks something for the run: open the equipment form, modally, on this page.
  void EditEquipmentRequested(int tab);
  /// The curves of a file are wanted, beside this form; empty: one is asked for.
  void CurvesRequested(CurveKind kind, const QString& file);
  /// Set-up and station are complete: open the run in the place of this form.
  void StartRequested();

 protected:
  using SetupForm::SetupForm;

  void CommandEnded() override;
  /// Fills a menu with the templates that came with the program and those of the user, which lie in the folder
  /// "templates" of the program directory.
  void OfferTemplates(QMenu* menu, const QString& suffix, const std::function<void(const QString&)>& begin);
  /// Connects cmdListFile and cmdCreateList.
  void ConnectList();
  void SelectListFile();
  /// Tells what the station lacks, and asks for the equipment form. @return whether it lacks something
  bool TellMissing(const std::optional<StartFailure>& missing);

 private:
  PlanTeller planTeller_;
  QLabel* plan_ = nullptr;
  QTimer* planTimer_ = nullptr;
};

}  // namespace hylden
