#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <string>
#include <string_view>

class QMainWindow;
class QWidget;

namespace hylden {

class Shell;

/// Moves a window to its stored place ("left,top" in twips); one that no screen shows centres it.
void PlaceWindow(QWidget& window, std::string_view position);

/// The text that PlaceWindow reads back.
std::string WindowPosition(const QWidget& window);

/// What the small windows around a run have in their title bars: minimised, Halt would be out of reach. They go and
/// come back with the run window, which they stand above.
inline constexpr Qt::WindowFlags kRunFrame =
    Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

/// Where a small window opens that has no remembered place: below the run window, else to its right, where the screen
/// has room; else over its lower right corner, beside the figures.
QPoint PlaceBeside(const QRect& runWindow, QSize size, const QRect& screen);
/// Where a window of this size opens over another one: in its middle, but within the screen, and no larger. All with
/// their frames.
QRect PlaceOver(const QRect& caller, QSize size, const QRect& screen);
/// Before a window is shown: it becomes no larger than its screen has room for, what then does not fit can be scrolled
/// to, and it goes over its caller's place unless it has been given one.
/// @param caller  null or hidden: the window system finds a place
void OpenOver(QMainWindow& window, const QWidget* caller);
/// A window with a second layout, for a screen that its usual one doesn't fit.
class HasTightLayout {
 public:
  virtual void Tighten() = 0;

 protected:
  HasTightLayout() = default;
  HasTightLayout(const HasTightLayout&) = default;
  HasTightLayout& operator=(const HasTightLayout&) = default;
  ~HasTightLayout() = default;
};
/// A window whose smallest size is beyond the room gets its tight layout; what is still beyond it becomes scrolled: the
/// pages of its tabs, else all of its contents.
void ScrollWhatIsBeyond(QMainWindow& window, QSize room);
/// Has the frame of a window that has been moved, and is not shown yet, stand where it was moved to.
void KeepFrame(QWidget& window);
/// Puts a run window at its remembered place. @return false when there is none
bool RestorePlace(Shell& shell, std::string_view windowKey, QWidget& window);
/// The same for a place as the settings keep it.
bool RestorePlace(const std::string& position, QWidget& window);
/// Remembers where a run window is. Settings that can't be written lose the place and disturb no run.
void RememberPlace(Shell& shell, std::string_view windowKey, const QWidget& window);
void RememberPlace(Shell& shell, std::string_view windowKey, const std::string& position);

}  // namespace hylden
