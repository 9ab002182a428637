#pragma once

#include <QObject>
#include <string>
#include <utility>
#include <vector>

class QWidget;

namespace hylden {

class Shell;

/// What an operator has made of a window, kept from one opening to the next: its size, its splitters, the widths of
/// columns that can be changed, the choices of its menus (units), and, of a window that stands beside the work, its
/// place. In the settings under the window's name; only what was changed is written, when the window is hidden.
/// Settings that can't be written lose it and disturb nothing; while a run has the instruments they are left alone.
class WindowMemory : public QObject {
 public:
  enum class Keeps { Size, SizeAndPlace };
  /// Makes a window as it was, before it is shown, and belongs to it. A place counts only on a screen that is there.
  /// @param window  has its name and controls
  WindowMemory(Shell& shell, QWidget& window, Keeps keeps);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Values = std::vector<std::pair<std::string, std::string>>;
  Values Now() const;
  void Restore();
  void Remember();
  std::string Section() const;

  Shell& shell_;
  QWidget& window_;
  Keeps keeps_;
  Values opened_;  ///< as it came up; empty until then
};

}  // namespace hylden
