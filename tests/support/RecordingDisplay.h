#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "run/RunDisplay.h"
#include "text/RuntimeError.h"

namespace hylden {

/// Keeps what a run shows.
class RecordingDisplay : public RunDisplay {
 public:
  void Phase(RunPhase phase) override { phases.push_back(phase); }
  void Status(const std::string& text) override {
    if (throwAtStatus == text) throw RuntimeError(ErrorNumber::Overflow);
    statuses.push_back(text);
  }
  void Note(const std::string& text) override { notes.push_back(text); }
  void Plan(const RunPlan& made) override { plan = made; }
  void Ahead(const RunAhead& now) override { ahead.push_back(now); }
  void Step(int step) override { steps.push_back(step); }
  void StepDone(int step) override {
    done.push_back(step);
    if (onStep) onStep(step);
  }
  void Show(Readout readout, std::optional<double> value) override { shown[readout].push_back(value); }
  void Mark(Readout readout, bool held) override { marked[readout] = held; }
  void RowChanged(int row) override {
    rows = row == 0 ? 0 : std::max(rows, row);
    if (row > 0 && onRow) onRow(row);
  }

  /// What a figure shows now; 0 where it shows nothing.
  double Now(Readout readout) { return shown[readout].empty() ? 0 : shown[readout].back().value_or(0); }
  /// All that it showed.
  std::vector<double> All(Readout readout) {
    std::vector<double> all;
    for (const auto& value : shown[readout])
      if (value) all.push_back(*value);
    return all;
  }

  std::function<void(int row)> onRow;    ///< a row has changed, with RF still on
  std::function<void(int step)> onStep;  ///< a step is recorded, with RF still on
  std::optional<std::string> throwAtStatus;
  std::vector<RunPhase> phases;
  std::vector<std::string> statuses, notes;
  RunPlan plan;
  std::vector<RunAhead> ahead;
  std::vector<int> steps, done;
  std::map<Readout, std::vector<std::optional<double>>> shown;
  std::map<Readout, bool> marked;
  int rows = 0;
};

}  // namespace hylden
