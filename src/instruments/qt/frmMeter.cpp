#include "instruments/qt/frmMeter.h"

#include "ui_frmMeter.h"

namespace hylden {

frmMeter::frmMeter(Shell& shell, Instruments& instruments, QWidget* parent)
    : DefinitionForm(InstrumentKind::Meter, shell, instruments, parent) {
  Ui::frmMeter().setupUi(this);
  Begin();
}

}  // namespace hylden
