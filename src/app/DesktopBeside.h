#pragma once

class QWidget;

namespace hylden {

/// Keeps a window usable beside a modal form, which locks every window but its transients: the window becomes one of
/// the form in front, and nobody's where none is modal. The form stays usable, too.
void StandBeside(QWidget& window);

/// Shows the window beside the work and brings it to the front.
void ShowBeside(QWidget& window);

}  // namespace hylden
