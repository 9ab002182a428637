#pragma once

class QMenu;

namespace hylden {

class Shell;

/// Fills the submenu "Hylden &Options": an entry for every data directory and for the default equipment file.
void FillOptionsMenu(QMenu& menu, Shell& shell);

}  // namespace hylden
