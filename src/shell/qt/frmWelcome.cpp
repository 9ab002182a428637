#include "shell/qt/frmWelcome.h"

#include "ui_frmWelcome.h"

namespace hylden {

frmWelcome::frmWelcome(bool hasDemo, QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::frmWelcome>()) {
  ui_->setupUi(this);
  ui_->cmdDemo->setVisible(hasDemo);
  const auto offer = [this](QAbstractButton* button, void (frmWelcome::*request)()) {
    connect(button, &QAbstractButton::clicked, this, [this, request] {
      close();
      emit(this->*request)();
    });
  };
  offer(ui_->cmdDemo, &frmWelcome::DemoRequested);
  offer(ui_->cmdOwnStation, &frmWelcome::OwnStationRequested);
  offer(ui_->cmdManual, &frmWelcome::ManualRequested);
}

frmWelcome::~frmWelcome() = default;

}  // namespace hylden
