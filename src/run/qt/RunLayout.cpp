#include "run/qt/RunLayout.h"

#include <QScreen>
#include <QSplitter>
#include <QStringList>
#include <string>

#include "platform/qt/QtText.h"
#include "run/qt/RunCurvePanel.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr char kSize[] = "Size", kSplit[] = "Split", kCurve[] = "Curve", kFreqAxis[] = "FreqAxis", kLinear[] = "linear";
/// The table's columns need the more; it is as wide as this against the curves.
constexpr int kTableShare = 600, kCurveShare = 400;
/// The title bar comes on top of a window's size.
constexpr QSize kFrame(8, 40);

/// "900,680"; two numbers above 0, or nothing.
QList<int> PairOf(const std::string& text) {
  QList<int> numbers;
  for (const QString& part : ToQt(text).split(QLatin1Char(','))) numbers << part.toInt();
  const bool isPair = numbers.size() == 2 && numbers[0] > 0 && numbers[1] > 0;
  return isPair ? numbers : QList<int>();
}

std::string TextOf(int one, int other) {
  return std::to_string(one) + "," + std::to_string(other);
}

}  // namespace

void RunLayout::Restore(Shell& shell, std::string_view windowKey) const {
  const std::string section(windowKey);
  INISettings& settings = shell.settings;
  const QList<int> size = PairOf(settings.Get(section, kSize, "")), split = PairOf(settings.Get(section, kSplit, ""));
  const QSize wanted = size.isEmpty() ? Window.size() : QSize(size[0], size[1]);
  Window.resize(wanted.boundedTo(Window.screen()->availableSize() - kFrame));
  Split.setSizes(split.isEmpty() ? QList<int>{kTableShare, kCurveShare} : split);
  Curves.SetQuantity(settings.Get(section, kCurve, ""));
  Curves.SetLog(settings.Get(section, kFreqAxis, "") != kLinear);
}

void RunLayout::Remember(Shell& shell, std::string_view windowKey) const {
  std::vector<std::pair<std::string, std::string>> values = {{kCurve, Curves.Quantity()},
                                                             {kFreqAxis, Curves.IsLog() ? "log" : kLinear}};
  const QList<int> parts = Split.sizes();
  if (parts.size() == 2 && parts[0] > 0 && parts[1] > 0) values.emplace_back(kSplit, TextOf(parts[0], parts[1]));
  if (!Window.isMaximized() && !Window.isFullScreen())
    values.emplace_back(kSize, TextOf(Window.width(), Window.height()));
  try {
    shell.settings.SaveAll(std::string(windowKey), values);
  } catch (const RuntimeError&) {
    // The next one opens as it was designed.
  }
}

}  // namespace hylden
