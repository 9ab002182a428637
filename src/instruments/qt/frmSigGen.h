#pragma once

#include "instruments/qt/DefinitionForm.h"

namespace hylden {

/// Edits a signal generator's definition (.sg) and tries it.
class frmSigGen : public DefinitionForm {
  Q_OBJECT

 public:
  frmSigGen(Shell& shell, Instruments& instruments, QWidget* parent = nullptr);
};

}  // namespace hylden
