#include "run/qt/RunLayout.h"

#include <QScreen>
#include <QSplitter>
#include <string>

#include "run/qt/RunCurvePanel.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr char kCurve[] = "Curve", kFreqAxis[] = "FreqAxis", kLinear[] = "linear";
/// The table's columns need the more; it is as wide as this against the curves.
constexpr int kTableShare = 600, kCurveShare = 400;
/// The title bar comes on top of a window's size.
constexpr QSize kFrame(8, 40);

}  // namespace

void RunLayout::Restore(Shell& shell, std::string_view windowKey) const {
  const std::string section(windowKey);
  Window.resize(Window.size().boundedTo(Window.screen()->availableSize() - kFrame));
  Split.setSizes({kTableShare, kCurveShare});
  Curves.SetQuantity(shell.settings.Get(section, kCurve, ""));
  Curves.SetLog(shell.settings.Get(section, kFreqAxis, "") != kLinear);
}

void RunLayout::Remember(Shell& shell, std::string_view windowKey) const {
  try {
    shell.settings.SaveAll(std::string(windowKey),
                           {{kCurve, Curves.Quantity()}, {kFreqAxis, Curves.IsLog() ? "log" : kLinear}});
  } catch (const RuntimeError&) {
    // The next one opens as it was designed.
  }
}

}  // namespace hylden
