#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "testrun/RunCommands.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// Keeps what a run shows.
class RecordingDisplay : public RunDisplay {
 public:
  void Countdown(double) override {}
  void Status(const std::string& text) override {
    if (throwAtStatus == text) throw RuntimeError(ErrorNumber::Overflow);
    statuses.push_back(text);
  }
  void Step(int step) override { steps.push_back(step); }
  void Frequency(double frequencyMHz) override { frequencies.push_back(frequencyMHz); }
  void SigGenLevel(float levelDbm) override { levels.push_back(levelDbm); }
  void TestLevel(float) override {}
  void InducedLevel(double levelDbua, double limitDbua) override {
    induced = levelDbua;
    limit = limitDbua;
  }
  void Power(double powerDbm) override { power = powerDbm; }
  void Highlight(Quantity quantity, bool red) override { highlights[quantity] = red; }
  void Dwell(double) override {}
  void Plan(int count, double minutes) override {
    planned = count;
    estimatedMinutes = minutes;
  }
  void Elapsed(double minutes) override { elapsed.push_back(minutes); }
  void Remaining(double minutes) override { remaining.push_back(minutes); }
  void RowChanged(int row) override { rows.push_back(row); }

  std::optional<std::string> throwAtStatus;
  std::vector<std::string> statuses;
  std::vector<int> steps, rows;
  std::vector<double> frequencies, elapsed, remaining;
  std::vector<float> levels;
  std::map<Quantity, bool> highlights;
  double induced = 0, limit = 0, power = 0, estimatedMinutes = 0;
  int planned = 0;
};

/// Keeps what a run does to the windows, in order.
class RecordingControls : public RunControls {
 public:
  void SetRunMode() override { calls.push_back("run mode"); }
  void SetHaltMode() override { calls.push_back("halt mode"); }
  void SetHalting() override { calls.push_back("halting"); }
  void FileMenuEnabled(bool on) override { calls.push_back(on ? "file menu on" : "file menu off"); }
  void ButtonsEnabled(bool on) override { calls.push_back(on ? "buttons on" : "buttons off"); }
  void ButtonsVisible(bool on) override { calls.push_back(on ? "buttons shown" : "buttons hidden"); }
  void OpenManual(const ManualStart& start) override {
    calls.push_back("manual opened");
    opened = start;
  }
  void CloseManual() override { calls.push_back("manual closed"); }
  void ManualFreq(double frequencyMHz) override { manualFreq = frequencyMHz; }
  void ManualRf(bool on) override { manualRf = on; }

  std::vector<std::string> calls;
  ManualStart opened;
  double manualFreq = 0;
  bool manualRf = false;
};

/// A station with a little physics behind its bus: generator (18), power meter (13) and meter (17), an amplifier with
/// 50 dB gain and a probe. The test definition holds three steps, 1, 2 and 4 MHz, calibrated at -10, -8 and -6 dBm for
/// 40, 42 and 44 dBm forward and 30, 32 and 34 dBm reverse power and 120 dBuV.
class RunRig {
 public:
  RunRig();

  /// Prepares and runs.
  void Run();
  RunReadiness Prepare() { return engine.Prepare(); }
  /// Does something when the display shows this status for the n-th time.
  void AtStatus(const std::string& status, std::function<void()> action, int n = 1);
  /// The commands that the generator got, without their ends.
  std::vector<std::string> Generator() const;
  /// The run data below the header, one text per row.
  std::vector<std::string> Rows() const { return RunRowLines(engine.Data(), false); }
  /// How often the text was shown in a message.
  int Shown(const std::string& text) const;

  ScriptedBus bus;
  TestShell t{bus};
  Instruments instruments{t.shell};
  Documents documents{t.shell, instruments};
  RecordingDisplay display;
  RecordingControls controls;
  RunEngine engine{t.shell, instruments, documents, display, controls};
  RunCommands commands{t.shell, documents, engine, controls};
  TestDefinition& test = documents.testSetup.Definition;
  EquipRecord& equipment = documents.equip.Record;

  // The physics.
  double gainDb = 50;                    ///< from the generator to the forward power
  std::map<double, double> gainErrorDb;  ///< more or less gain at a frequency
  double returnLossDb = 10;              ///< forward over reverse power
  double probeDb = 90;                   ///< probe reading in dBuV over the generator level in dBm
  double generatorDbm = -200, frequencyMHz = 0;
  bool rfOn = false;
  double highestDbm = -200;            ///< highest generator level with RF on
  std::map<double, double> highestAt;  ///< the same by frequency

 private:
  void Follow(const std::string& line);
  std::optional<std::string> AnswerOf(int address, const std::string& command) const;
  void WriteFiles();
  void DefineInstruments();
  void DefineTest();
};

}  // namespace hylden
