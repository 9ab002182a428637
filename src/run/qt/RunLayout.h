#pragma once

#include <string_view>

class QSplitter;
class QWidget;

namespace hylden {

class RunCurvePanel;
class Shell;

/// How a run window comes up before its memory changes that, and what its curves show, which is remembered with its
/// place.
struct RunLayout {
  QWidget& Window;
  QSplitter& Split;
  RunCurvePanel& Curves;

  /// Never larger than the screen.
  void Restore(Shell& shell, std::string_view windowKey) const;
  /// Settings that can't be written lose it and disturb no run.
  void Remember(Shell& shell, std::string_view windowKey) const;
};

}  // namespace hylden
