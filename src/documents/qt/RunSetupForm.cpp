#include "documents/qt/RunSetupForm.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <utility>

#include "documents/Equip.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "widgets/PathLabel.h"

namespace hylden {

namespace {
constexpr int kTypingPauseMs = 250;  // behind the last key; a million frequencies take some 50 ms to plan
}

void RunSetupForm::TellPlanBy(PlanTeller teller) {
  planTeller_ = std::move(teller);
  plan_ = new QLabel(this);
  plan_->setObjectName(QStringLiteral("lblPlan"));
  plan_->setMargin(4);
  plan_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long text widens no window
  plan_->setAccessibleName(QStringLiteral("What the entries define"));
  statusBar()->addPermanentWidget(plan_, 1);
  planTimer_ = new QTimer(this);
  planTimer_->setSingleShot(true);
  planTimer_->setInterval(kTypingPauseMs);
  connect(planTimer_, &QTimer::timeout, this, &RunSetupForm::ShowPlan);
  // What the entries defined before says nothing of them now.
  const auto later = [this] {
    plan_->clear();
    planTimer_->start();
  };
  for (const QLineEdit* const box : findChildren<QLineEdit*>()) connect(box, &QLineEdit::textChanged, this, later);
  for (const QAbstractButton* const button : findChildren<QAbstractButton*>())
    if (button->isCheckable()) connect(button, &QAbstractButton::toggled, this, later);
  ShowPlan();
}

void RunSetupForm::ShowPlan() {
  plan_->setText(ToQt(planTeller_(Entries())));
  plan_->setToolTip(plan_->text());
}

/// A list that was chosen changes no box.
void RunSetupForm::CommandEnded() {
  SetupForm::CommandEnded();
  if (planTimer_) planTimer_->start();
}

void RunSetupForm::OfferTemplates(QMenu* menu, const QString& suffix,
                                  const std::function<void(const QString&)>& begin) {
  const auto fill = [this, menu, suffix, begin] {
    menu->clear();
    for (const std::string& directory : {shell_.settings.SharedDirectory(), shell_.settings.ProgramDirectory()}) {
      if (directory.empty()) continue;
      const QDir templates(ToQt(directory) + QStringLiteral("/templates"));
      for (const QFileInfo& file : templates.entryInfoList({QStringLiteral("*.") + suffix}, QDir::Files, QDir::Name)) {
        QString name = file.completeBaseName();
        auto* const entry = menu->addAction(name.replace(QLatin1Char('&'), QLatin1String("&&")));
        On(entry, [begin, path = file.filePath()] { begin(path); });
      }
    }
    menu->setEnabled(!menu->isEmpty());
  };
  connect(menu, &QMenu::aboutToShow, this, fill);
  fill();
}

void RunSetupForm::ConnectList() {
  On(findChild<QPushButton*>(QStringLiteral("cmdListFile")), [this] { SelectListFile(); });
  On(findChild<QPushButton*>(QStringLiteral("cmdCreateList")),
     [this] { emit CreateListRequested(ToQt(Entries()["lblListFile"])); });
}

void RunSetupForm::SelectListFile() {
  if (const auto path = AskListFile(Entries()["lblListFile"])) UseList(ToQt(*path));
}

bool RunSetupForm::TellMissing(const std::optional<StartFailure>& missing) {
  if (!missing) return false;
  shell_.dialogs.Tell(missing->Text);
  emit EditEquipmentRequested(missing->EquipmentTab);
  return true;
}

}  // namespace hylden
