#pragma once

class QWidget;

namespace hylden {

class Dialogs;
struct EntryFailure;

/// Leads the operator to the entry that has to be corrected: turns the form's tab control "tabSetup" to the page that
/// holds it, focuses and selects it when it is visible, and shows the prompt or message.
void PointOut(QWidget& form, const EntryFailure& failure, Dialogs& dialogs);

}  // namespace hylden
