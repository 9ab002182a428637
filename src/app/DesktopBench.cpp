#include "app/DesktopBench.h"

#include <QMainWindow>
#include <QScreen>
#include <QToolBar>
#include <QToolButton>
#include <utility>

#include "app/DesktopBeside.h"
#include "bench/Bench.h"
#include "bench/qt/frmBench.h"
#include "shell/Shell.h"
#include "shell/qt/WorkingForm.h"
#include "widgets/WindowMemory.h"
#include "widgets/WindowPlace.h"

namespace hylden {

BenchWindows::BenchWindows(Bench* bench, Shell& shell, QIcon icon)
    : bench_(bench), shell_(shell), icon_(std::move(icon)) {}

BenchWindows::~BenchWindows() = default;

void BenchWindows::Announce(QMainWindow& window) {
  if (!Present()) return;
  QToolBar& notice = ShowBenchNotice(window, shell_.runNotice);
  QAction* const open = notice.addAction(QStringLiteral("Bench Panel"));
  open->setObjectName(QStringLiteral("mnuBench"));
  open->setShortcut(Qt::CTRL | Qt::Key_B);
  open->setToolTip(QStringLiteral("What the simulated bench is doing, and how it is cabled (Ctrl+B)"));
  qobject_cast<QToolButton*>(notice.widgetForAction(open))->setAutoRaise(false);
  connect(open, &QAction::triggered, this, &BenchWindows::ShowPanel);
}

void BenchWindows::Cable(MeterAt place) {
  const bool byItself = !panel_ || panel_->CablesByItself();
  if (Present() && byItself) bench_->Connect(place);
}

void BenchWindows::MakePanel() {
  panel_ = std::make_unique<frmBench>(*bench_);
  panel_->setWindowIcon(icon_);
  ShowBenchNotice(*panel_, shell_.runNotice);
  connect(panel_.get(), &frmBench::HelpRequested, this, &BenchWindows::HelpRequested);
  connect(panel_.get(), &frmBench::EscapePressed, this, &BenchWindows::EscapePressed);
  // At the right edge of the screen it leaves the most of a run window in sight.
  OpenOver(*panel_, nullptr);
  const QRect screen = panel_->screen()->availableGeometry();
  panel_->move(screen.right() - panel_->width(), screen.top());
  new WindowMemory(shell_, *panel_, WindowMemory::Keeps::SizeAndPlace);
  OpenOver(*panel_, nullptr);
}

void BenchWindows::ShowPanel() {
  if (!Present()) return;
  if (!panel_) MakePanel();
  ShowBeside(*panel_);
}

void BenchWindows::ClosePanel() {
  if (panel_) panel_->close();
}

void BenchWindows::KeepBeside() {
  if (panel_ && panel_->isVisible()) StandBeside(*panel_);
}

}  // namespace hylden
