#pragma once

#include "shell/FormFields.h"

class QAbstractButton;
class QWidget;

namespace hylden {

/// Chooses or ticks the button. An option that is not chosen may leave its group without a choice.
void SetSelected(QAbstractButton& button, bool selected);

/// Shows entries in the controls of their names.
void ShowEntries(QWidget& form, const FormEntries& entries);
/// Reads the entries back from their controls.
void ReadEntries(const QWidget& form, FormEntries& entries);
/// Enables the controls, and the labels that belong to them.
void EnableControls(QWidget& form, const UsedControls& used);

}  // namespace hylden
