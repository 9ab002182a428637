#include "instruments/qt/frmSigGen.h"

#include "ui_frmSigGen.h"

namespace hylden {

frmSigGen::frmSigGen(Shell& shell, Instruments& instruments, QWidget* parent)
    : DefinitionForm(InstrumentKind::SigGen, shell, instruments, parent) {
  Ui::frmSigGen().setupUi(this);
  Begin();
}

}  // namespace hylden
