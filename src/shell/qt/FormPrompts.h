#pragma once

class QWidget;

namespace hylden {

class Dialogs;
struct EntryFailure;

/// Leads the operator to the entry that has to be corrected: turns the form's tab control "tabSetup" to the page that
/// holds it, focuses and selects it when it is visible, and shows the message, or the prompt
/// with the box's name and range.
void PointOut(QWidget& form, const EntryFailure& failure, Dialogs& dialogs);

}  // namespace hylden
