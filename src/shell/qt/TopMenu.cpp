#include "shell/qt/TopMenu.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>

#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "text/ExistingPath.h"
#include "ui_TopMenu.h"

namespace hylden {

TopMenu::TopMenu(QWidget* parent) : QMainWindow(parent), ui_(std::make_unique<Ui::TopMenu>()) {
  ui_->setupUi(this);
  setWindowIcon(LogoPixmap(64));
  connect(ui_->cmdConfigSys, &QPushButton::clicked, this, &TopMenu::ConfigureRequested);
  connect(ui_->cmdCalibration, &QPushButton::clicked, this, &TopMenu::CalibrationRequested);
  connect(ui_->cmdRunTest, &QPushButton::clicked, this, &TopMenu::RunTestRequested);
  connect(ui_->cmdBench, &QPushButton::clicked, this, &TopMenu::BenchRequested);
  connect(ui_->cmdDemo, &QPushButton::clicked, this, &TopMenu::DemoRequested);
  connect(ui_->mnuFileOpenRun, &QAction::triggered, this, &TopMenu::OpenRunDataRequested);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  ui_->cmdBench->hide();
  ui_->cmdDemo->hide();
}

TopMenu::~TopMenu() = default;

void TopMenu::SetTitle(const std::string& title) {
  setWindowTitle(ToQt(title));
  ui_->Label1->setText(ScreenText(title + "\r\nConducted RF Immunity"));
}

void TopMenu::ShowStation(const std::string& equipmentFile, const std::string& testFile) {
  const auto named = [this](const char* what, const std::string& file) {
    constexpr int kWidest = 300;  // a long name makes no window wide
    const QString name = file.empty() ? QStringLiteral("none") : ToQt(FileNameOnly(file));
    return QString::fromLatin1(what) + ui_->lblStation->fontMetrics().elidedText(name, Qt::ElideMiddle, kWidest);
  };
  const auto whole = [](const std::string& file) {
    return file.empty() ? QString() : QFileInfo(ToQt(ExistingPath(file))).absoluteFilePath();
  };
  ui_->lblStation->setText(named("Station: ", equipmentFile) + QLatin1Char('\n') + named("Test: ", testFile));
  ui_->lblStation->setToolTip((whole(equipmentFile) + QLatin1Char('\n') + whole(testFile)).trimmed());
}

void TopMenu::OfferBench() {
  ui_->cmdBench->show();
}

void TopMenu::OfferDemo() {
  ui_->cmdDemo->show();
}

void TopMenu::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

void TopMenu::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F1)
    emit HelpRequested({});
  else
    QMainWindow::keyPressEvent(event);
}

}  // namespace hylden
