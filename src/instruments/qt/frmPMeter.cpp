#include "instruments/qt/frmPMeter.h"

#include "ui_frmPMeter.h"

namespace hylden {

frmPMeter::frmPMeter(Shell& shell, Instruments& instruments, QWidget* parent)
    : DefinitionForm(InstrumentKind::PwrMtr, shell, instruments, parent) {
  Ui::frmPMeter().setupUi(this);
  Begin();
}

}  // namespace hylden
