#pragma once

#include "instruments/qt/DefinitionForm.h"

namespace hylden {

/// Edits a meter's definition (.mtr) and tries it.
class frmMeter : public DefinitionForm {
  Q_OBJECT

 public:
  frmMeter(Shell& shell, Instruments& instruments, QWidget* parent = nullptr);
};

}  // namespace hylden
