#pragma once

#include <string_view>

class QSplitter;
class QWidget;

namespace hylden {

class RunCurvePanel;
class Shell;

/// What of a run window is remembered besides its place: its size, where table and curves part, and what the curves
/// show.
struct RunLayout {
  QWidget& Window;
  QSplitter& Split;
  RunCurvePanel& Curves;

  /// As it was left, but never larger than the screen.
  void Restore(Shell& shell, std::string_view windowKey) const;
  /// Settings that can't be written lose the layout and disturb no run.
  void Remember(Shell& shell, std::string_view windowKey) const;
};

}  // namespace hylden
