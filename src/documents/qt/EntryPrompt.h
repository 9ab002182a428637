#pragma once

class QWidget;

namespace hylden {

class Dialogs;
struct EntryFailure;

/// Leads the operator to the entry that has to be corrected: turns the form's tab control "tabSetup" to it, focuses and
/// selects the box, and shows the prompt or message.
void PointOut(QWidget& form, const EntryFailure& failure, Dialogs& dialogs);

}  // namespace hylden
