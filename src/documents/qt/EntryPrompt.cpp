#include "documents/qt/EntryPrompt.h"

#include <QLineEdit>
#include <QTabWidget>

#include "documents/Equip.h"
#include "platform/Dialogs.h"
#include "platform/qt/QtText.h"
#include "shell/qt/FormPrompts.h"

namespace hylden {

namespace {

/// The page that a failure names; without a name, the one that holds the box.
int PageOf(const QTabWidget& tabs, const EntryFailure& failure, const QWidget* box) {
  if (failure.Tab >= 0 || !box) return failure.Tab;
  for (int page = 0; page < tabs.count(); ++page)
    if (tabs.widget(page)->isAncestorOf(box)) return page;
  return -1;
}

}  // namespace

void PointOut(QWidget& form, const EntryFailure& failure, Dialogs& dialogs) {
  auto* const box = form.findChild<QLineEdit*>(ToQt(failure.Control));
  if (auto* const tabs = form.findChild<QTabWidget*>(QStringLiteral("tabSetup"))) {
    const int page = PageOf(*tabs, failure, box);
    if (page >= 0) tabs->setCurrentIndex(page);
  }
  if (failure.Reason == EntryFailure::Kind::Message) {
    auto* const control = failure.Control.empty() ? nullptr : form.findChild<QWidget*>(ToQt(failure.Control));
    if (control && control->isVisible()) control->setFocus();
    dialogs.Tell(failure.Text);
  } else if (box && failure.Reason == EntryFailure::Kind::NotANumber) {
    NotANumberPrompt(*box, dialogs);
  } else if (box) {
    OutOfRangePrompt(*box, dialogs);
  }
}

}  // namespace hylden
