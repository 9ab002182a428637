// A factor table of 100,000 rows in its editor: loading, typing, scrolling, pasting. Without a screen.

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <cmath>

#include "benchmarks/Limits.h"
#include "editors/qt/frmEditFactor.h"
#include "platform/console/ConsoleClock.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "support/FakeDialogs.h"
#include "support/FakePrinter.h"
#include "support/FakeSpeaker.h"
#include "support/ScriptedBus.h"
#include "support/TempDir.h"
#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

using std::chrono::milliseconds;

constexpr int kRows = 100000;

std::string TableText(const char* separator) {
  std::string text;
  for (int i = 0; i < kRows; ++i)
    text += ShortestText(0.15 + i * 0.01) + separator + Format(2 + std::sin(i * 0.01), "0.0###") + "\r\n";
  return text;
}

struct Editor {
  Editor() : form(shell) {
    QApplication::setQuitOnLastWindowClosed(false);
    form.show();
    QApplication::setActiveWindow(&form);
  }
  void Load() { form.LoadFile(ToQt(path)); }
  QTableView& View() { return *form.findChild<QTableView*>(); }
  void Choose(const char* entry) {
    form.findChild<QAction*>(QLatin1String(entry))->trigger();
    Settle();
  }
  void Settle() { QCoreApplication::processEvents(); }

  ConsoleClock clock;
  QtEventLoop events{clock};
  FakeDialogs dialogs;
  FakeSpeaker speaker;
  FakePrinter printer;
  ScriptedBus bus;
  TempDir home;
  std::string path = home.Write("long.los", TableText(", "));
  Shell shell{Platform{dialogs, clock, events, speaker, printer, bus}, home.Path()};
  frmEditFactor form;
};

void LoadLongTable(benchmark::State& state) {
  Editor editor;
  for (auto _ : state) {
    editor.Load();
    editor.Settle();
  }
  if (editor.View().model()->rowCount() != kRows + 1) state.SkipWithError("the table does not load");
  LimitTime(state, milliseconds(2000));
}
BENCHMARK(LoadLongTable)->Unit(benchmark::kMillisecond);

void TypeInLongTable(benchmark::State& state) {
  Editor editor;
  editor.Load();
  editor.Settle();
  editor.View().setCurrentIndex(editor.View().model()->index(kRows / 2, 1));
  bool add = false;
  editor.View().setFocus();
  for (auto _ : state) {
    add = !add;
    QTest::keyClick(QApplication::focusWidget(), add ? Qt::Key_1 : Qt::Key_Backspace);
    editor.Settle();
  }
  LimitTime(state, milliseconds(20));
}
BENCHMARK(TypeInLongTable)->Unit(benchmark::kMillisecond);

void ScrollLongTable(benchmark::State& state) {
  Editor editor;
  editor.Load();
  editor.Settle();
  QScrollBar& bar = *editor.View().verticalScrollBar();
  int page = 0;
  for (auto _ : state) {
    bar.setValue(++page * 997 % bar.maximum());
    editor.Settle();
  }
  LimitTime(state, milliseconds(20));
}
BENCHMARK(ScrollLongTable)->Unit(benchmark::kMillisecond);

void InsertRowInLongTable(benchmark::State& state) {
  Editor editor;
  editor.Load();
  editor.Settle();
  for (auto _ : state) {
    editor.Choose("mnuEditInsRow");
    editor.Choose("mnuEditUndo");
  }
  LimitTime(state, milliseconds(50));
}
BENCHMARK(InsertRowInLongTable)->Unit(benchmark::kMillisecond);

void PasteLongTable(benchmark::State& state) {
  Editor editor;
  QApplication::clipboard()->setText(ToQt(TableText("\t")));
  for (auto _ : state) {
    editor.Choose("mnuEditPaste");
    editor.Choose("mnuEditUndo");
  }
  LimitTime(state, milliseconds(1000));
}
BENCHMARK(PasteLongTable)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
