#pragma once

namespace hylden {

class Dialogs;

/// Tells the program's version and the system that it runs on.
void ShowAbout(Dialogs& dialogs);

}  // namespace hylden
