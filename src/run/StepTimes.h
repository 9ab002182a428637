#pragma once

#include <optional>
#include <string>
#include <vector>

namespace hylden {

/// Steps that differ in what they cost.
enum class StepKind {
  First,  ///< comes from far below its level
  Next,
  Change  ///< changes the amplifier's band
};

/// A step as the definition of its run has it.
struct ExpectedStep {
  StepKind Kind = StepKind::Next;
  double Dwell = 0;  ///< s
  double Wait = 0;   ///< of each wait on the way to the level, s
  double Waits = 1;  ///< how many of them the definition lets expect
};

/// What it took.
struct MeasuredStep {
  ExpectedStep Expected;
  double Seconds = 0;
  int Waits = 0;
  double Readings = 0;  ///< what was done within its dwell, s
};

/// What the steps of a kind took beyond what the definition says.
struct StepCost {
  int Steps = 0;         ///< that were measured; 0: nobody knows
  double Each = 0;       ///< bus, settling and readings at each wait, s
  double MoreWaits = 0;  ///< than expected; may be below 0
};
template <class F>
void RowValues(F& f, StepCost& cost) {
  f.Value(cost.Steps);
  f.Value(cost.Each);
  f.Value(cost.MoreWaits);
}

/// What a run took beyond what its definition says, so that other dwells and frequencies can be told from it.
struct RunTimes {
  std::optional<double> Up, Down;  ///< instruments, s
  double Readings = 0;             ///< within a dwell, s
  StepCost First, Next, Change;
  std::string Key;  ///< station and kind of run
};
template <class F>
void RowValues(F& f, RunTimes& times) {
  f.Value(times.Up);
  f.Value(times.Down);
  f.Value(times.Readings);
  RowValues(f, times.First);
  RowValues(f, times.Next);
  RowValues(f, times.Change);
  f.Text(times.Key);
}

/// What the steps of a run tell; one that stalled is left out. Without Up, Down and Key.
RunTimes TimesOf(const std::vector<MeasuredStep>& steps);

/// The runs of this key, taken together: of each figure the one in the middle. Nothing where there is no such run.
std::optional<RunTimes> TypicalTimes(const std::vector<RunTimes>& runs, const std::string& key);

/// What a step is going to take, s; nothing where that was never measured.
std::optional<double> SecondsOf(const ExpectedStep& step, const RunTimes& times);

/// Puts a run behind the others. Of a key the newest five stay, of all the newest 500.
void AddTimes(std::vector<RunTimes>& runs, RunTimes times);

/// The text of times.txt, and back: a line that is none costs itself.
std::string TimesText(const std::vector<RunTimes>& runs);
std::vector<RunTimes> TimesOfText(const std::string& text);

}  // namespace hylden
