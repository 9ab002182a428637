#pragma once

#include "instruments/qt/DefinitionForm.h"

namespace hylden {

/// Edits a power meter's definition (.pm) and tries it.
class frmPMeter : public DefinitionForm {
  Q_OBJECT

 public:
  frmPMeter(Shell& shell, Instruments& instruments, QWidget* parent = nullptr);
};

}  // namespace hylden
