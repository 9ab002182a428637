#include "testrun/RunReportText.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "measure/Conversions.h"
#include "shell/Version.h"
#include "testrun/RunCurves.h"
#include "testrun/TestInWords.h"
#include "text/ExistingPath.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr const char *kNotStated = "not stated", *kNotKnown = "not known", *kNoLevel = "–";

std::string LevelText(const std::optional<double>& levelDb) {
  return levelDb && !IsMissing(*levelDb) ? Format(*levelDb, "##0.0") : std::string(kNoLevel);
}
std::string FreqText(double freqMHz) {
  return Format(freqMHz, "#0.0#####");
}
std::string Or(const std::string& text, const char* otherwise) {
  return text.empty() ? otherwise : text;
}

std::string DurationText(double seconds) {
  constexpr double kShort = 90, kSecondsOfMinute = 60, kLong = 90 * kSecondsOfMinute;
  if (seconds < kShort) return Format(seconds, "##0") + " s";
  if (seconds < kLong) return Format(seconds / kSecondsOfMinute, "##0.0") + " min";
  const auto minutes = static_cast<long>(std::lround(seconds / kSecondsOfMinute));
  return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

/// The steps of a run by what became of them, and its thresholds.
struct Rows {
  explicit Rows(const RunData& data) {
    int row = 0;
    for (const RunEntry& entry : data.Entries()) {
      ++row;
      if (const auto* const step = std::get_if<StepEntry>(&entry)) {
        (step->Result ? Complete : Incomplete).push_back(step);
      } else {
        Thresholds.emplace_back(row, &std::get<ThresholdEntry>(entry));
      }
    }
    Held.reserve(Complete.size());
    for (const StepEntry* const step : Complete) Held.push_back(step->Freq);
    std::sort(Held.begin(), Held.end());
    Held.erase(std::unique(Held.begin(), Held.end(), IsSameFrequency), Held.end());
  }

  bool IsHeldElsewhere(const StepEntry& failed) const {
    const auto at = std::lower_bound(Held.begin(), Held.end(), failed.Freq - kSameMHz);
    return at != Held.end() && IsSameFrequency(*at, failed.Freq);
  }
  bool Measures(std::optional<double> StepResult::*quantity) const {
    return std::any_of(Complete.begin(), Complete.end(),
                       [&](const StepEntry* step) { return ((*step->Result).*quantity).has_value(); });
  }

  std::vector<const StepEntry*> Complete, Incomplete;
  std::vector<double> Held;  ///< the frequencies of complete steps, rising, each once
  std::vector<std::pair<int, const ThresholdEntry*>> Thresholds;  ///< with their rows
};

/// The step at whose level a threshold was marked: the latest one at its frequency before it.
const StepEntry* StepOf(const RunData& data, int thresholdRow, double freqMHz) {
  for (int row = thresholdRow - 1; row > 0; --row) {
    const auto* const step = std::get_if<StepEntry>(&data.Entries()[static_cast<std::size_t>(row - 1)]);
    if (step && step->Result && IsSameFrequency(step->Freq, freqMHz)) return step;
  }
  return nullptr;
}

/// The level at which a threshold was marked, dBuV; nothing where the step did not come to its test level.
std::optional<double> LevelOf(const StepEntry* step, const ThresholdEntry& threshold) {
  if (!step || StayedBelow(step->Result->Marks) || IsMissing(step->Result->TestLevel)) return std::nullopt;
  return double{step->Result->TestLevel} + threshold.OffsetDb;
}

/// Makes the sections of a report, one after the other.
class Report {
 public:
  Report(const OpenedRun& run, bool allSteps)
      : run_(run), data_(run.Run.Data), info_(run.Beside.Info.value_or(RunInfo())), rows_(data_) {
    text_.Title = "Test Report";
    text_.Subtitle = "Immunity to conducted disturbances, induced by radio-frequency fields";
    text_.Warning = info_.Notice;
    text_.Header = text_.Title + (info_.Particulars.Product.empty() ? "" : ": " + info_.Particulars.Product);
    text_.Footer = VersionTitle() + (run.File.empty() ? "" : ", of " + FileNameOf(run.File));
    AddParticulars();
    AddSummary();
    AddThresholds();
    AddFigures();
    AddTest();
    AddCalibration();
    AddStation();
    if (allSteps) AddSteps();
    AddRemarks();
    AddGaps();
    Section("Signature").Entries = {{"Date", ""}, {"Name, signature", ""}};
  }

  RunReportText Take() { return std::move(text_); }

 private:
  ReportSection& Section(const char* title) {
    ReportSection& section = text_.Sections.emplace_back();
    section.Title = title;
    return section;
  }

  void AddParticulars();
  void AddSummary();
  void AddThresholds();
  void AddFigures();
  void AddTest();
  void AddCalibration();
  void AddStation();
  void AddSteps();
  void AddRemarks();
  void AddGaps();

  std::string ExposureText() const;
  std::string OutcomeText() const;
  std::vector<std::string> SeamTexts() const;
  std::string LevelsText() const;
  RunCurveContext CurveContext() const;
  std::vector<ReportTable::Column> StepColumns() const;
  std::vector<std::string> StepCells(int row, const StepEntry& step) const;
  std::string TimeOf(int row) const;

  const OpenedRun& run_;
  const RunData& data_;
  const RunInfo info_;
  const Rows rows_;
  RunReportText text_;
};

void Report::AddParticulars() {
  const RunParticulars& particulars = info_.Particulars;
  WordEntries& entries = Section("").Entries;
  entries = {{"Product", Or(particulars.Product, kNotStated)},
             {"Customer", Or(particulars.Customer, kNotStated)},
             {"Laboratory", Or(particulars.Lab, kNotStated)},
             {"Operator", Or(particulars.Operator.empty() ? info_.User : particulars.Operator, kNotStated)},
             {"Ambient conditions", Or(particulars.Ambient, kNotStated)},
             {"Begun", Or(info_.Started, kNotKnown)},
             {"Ended", Or(info_.Ended, kNotKnown)}};
  if (info_.ActualSeconds > 0)
    entries.emplace_back(info_.Seams.empty() ? "Duration" : "Duration of the last part",
                         DurationText(info_.ActualSeconds) + ", manual mode not counted");
  entries.emplace_back("Run data", run_.File.empty() ? "not saved yet" : FileNameOf(run_.File));
  if (!info_.Program.empty()) entries.emplace_back("Recorded with", info_.Program);
}

std::string Report::ExposureText() const {
  if (rows_.Complete.empty())
    return run_.Run.ThresholdsOnly ? "The run data hold the marked thresholds only, no steps."
                                   : "The run data hold no complete step.";
  double lowest = rows_.Complete.front()->Freq, highest = lowest;
  for (const StepEntry* const step : rows_.Complete) {
    lowest = std::min(lowest, step->Freq);
    highest = std::max(highest, step->Freq);
  }
  std::string text = "The product was exposed in " + CountText(rows_.Complete.size(), "step");
  const std::size_t repeated = rows_.Complete.size() - rows_.Held.size();
  if (repeated > 0) text += ", " + std::to_string(repeated) + " of them at a frequency that was there before,";
  text += IsSameFrequency(lowest, highest) ? " at " : " from " + FreqText(lowest) + " MHz to ";
  text += FreqText(highest) + " MHz";
  if (info_.Test) text += ", with " + ModulationText(info_.Test->Is);
  return text + ".";
}

std::string Report::LevelsText() const {
  std::vector<float> levels;
  for (const StepEntry* const step : rows_.Complete)
    if (!IsMissing(step->Result->TestLevel)) levels.push_back(step->Result->TestLevel);
  if (levels.empty()) return "The test level is not known.";
  const auto [least, most] = std::minmax_element(levels.begin(), levels.end());
  const float lowest = *least, highest = *most;
  const auto both = [](float dbuv) {
    return LevelText(double{dbuv}) + " dBµV (" + Format(Conversions::DbuvToVolts(double{dbuv}), "##0.0#") + " V)";
  };
  const auto limited = std::count_if(rows_.Complete.begin(), rows_.Complete.end(),
                                     [](const StepEntry* step) { return StayedBelow(step->Result->Marks); });
  std::string text = (limited > 0 ? "The test level aimed at was " : "The test level was ") + both(lowest) +
                     (rows_.Complete.size() == 1 ? "."
                      : lowest == highest        ? " at every step."
                                                 : " to " + both(highest) + ".");
  if (limited > 0)
    text += " At " + CountText(static_cast<std::size_t>(limited), "step") +
            " the induced current or the forward power reached its limit first, and the level stayed below.";
  return text;
}

std::string Report::OutcomeText() const {
  const auto known = static_cast<std::size_t>(std::max(info_.CompletedSteps, 0));
  const std::string steps = std::to_string(known > 0 ? known : rows_.Held.size()) + " of " +
                            CountText(static_cast<std::size_t>(std::max(info_.PlannedSteps, 0)), "planned step");
  const std::string count = info_.PlannedSteps > 0 ? ": " + steps + " are complete" : "";
  if (info_.Outcome == runend::kFinished) return "The run was taken to its end" + count + ".";
  if (info_.Outcome == runend::kEndedEarly) return "The run ended early" + count + ".";
  if (info_.Outcome == runend::kRecovered)
    return "The run did not end in order; what it had recorded was recovered" + count + ".";
  return "Whether the run was taken to its end is not known" + count + ".";
}

std::vector<std::string> Report::SeamTexts() const {
  std::set<int> seams = info_.Seams;
  seams.insert(data_.Seams().begin(), data_.Seams().end());
  std::vector<std::string> texts;
  for (const int row : seams) {
    if (row < 1 || static_cast<std::size_t>(row) > data_.Entries().size()) continue;
    const RunEntry& entry = data_.Entries()[static_cast<std::size_t>(row - 1)];
    const double freq = std::visit([](const auto& e) { return e.Freq; }, entry);
    texts.push_back("The run had ended early and was continued at " + FreqText(freq) + " MHz (row " +
                    std::to_string(row) + ").");
  }
  return texts;
}

void Report::AddSummary() {
  ReportSection& section = Section("Summary");
  section.Sentences = {ExposureText()};
  if (!rows_.Complete.empty()) section.Sentences.push_back(LevelsText());
  const std::size_t thresholds = rows_.Thresholds.size();
  section.Sentences.push_back(thresholds == 0 ? "No susceptibility threshold was marked."
                                              : CountText(thresholds, "susceptibility threshold") +
                                                    (thresholds == 1 ? " was marked." : " were marked."));
  section.Sentences.push_back(OutcomeText());
  for (std::string& text : SeamTexts()) section.Sentences.push_back(std::move(text));
  section.Notes = {
      "This report states what was applied and what the operator marked. Whether the product passes is not judged."};
}

void Report::AddThresholds() {
  if (rows_.Thresholds.empty()) return;
  ReportSection& section = Section("Susceptibility thresholds");
  section.Table.Columns = {{"No.", 0.5, false},        {"Frequency, MHz", 1.2},  {"Test level, dBµV", 1.1},
                           {"Offset, dB", 0.9},        {"Threshold, dBµV", 1.1}, {"Threshold, V", 1},
                           {"Observation", 3.4, false}};
  int number = 0;
  bool lacksLevel = false;
  for (const auto& [row, threshold] : rows_.Thresholds) {
    const StepEntry* const step = StepOf(data_, row, threshold->Freq);
    const auto level = LevelOf(step, *threshold);
    lacksLevel = lacksLevel || !level;
    section.Table.Rows.push_back(
        {"T" + std::to_string(++number), FreqText(threshold->Freq),
         step ? LevelText(double{step->Result->TestLevel}) : kNoLevel, LevelText(threshold->OffsetDb), LevelText(level),
         level ? Format(Conversions::DbuvToVolts(*level), "##0.00") : kNoLevel, Or(threshold->Comment, kNotStated)});
  }
  section.Notes = {"The offset is counted from the level that the step at this frequency had come to."};
  if (lacksLevel)
    section.Notes.push_back(
        "–: the step did not come to its test level, or there is none at this frequency: only the offset is known.");
}

RunCurveContext Report::CurveContext() const {
  RunCurveContext context;
  if (!info_.Test) return context;
  const TestDefinition& test = info_.Test->Is;
  context.ImpedanceOhms = test.EUTCircuitImpedance;
  context.ByNetPower = test.LevelsBy(LevelingMethod::NetPower);
  std::vector<double> frequencies;
  frequencies.reserve(rows_.Complete.size());
  for (const StepEntry* const step : rows_.Complete) frequencies.push_back(step->Freq);
  if (!info_.CalPoints.empty()) context.Aims = AimsOf(test, clsCalFile(info_.CalPoints), frequencies);
  return context;
}

void Report::AddFigures() {
  if (rows_.Complete.size() < 2) return;
  ReportSection& section = Section("Levels over frequency");
  const RunCurveContext context = CurveContext();
  const auto add = [&](RunQuantity quantity, const char* title) {
    ReportFigure figure{title, RunCurves(quantity, context, data_.Entries()).Curves(), {}};
    std::erase_if(figure.Curves, [](const Curve& curve) { return curve.Points.empty(); });
    for (Curve& curve : figure.Curves)
      if (curve.Unit.starts_with("dBu")) curve.Unit.replace(2, 1, "µ");
    if (!figure.Curves.empty()) section.Figures.push_back(std::move(figure));
  };
  add(RunQuantity::TestLevel, "Test level");
  for (std::size_t i = 0; i < rows_.Thresholds.size() && !section.Figures.empty(); ++i) {
    const auto& [row, threshold] = rows_.Thresholds[i];
    if (const auto level = LevelOf(StepOf(data_, row, threshold->Freq), *threshold))
      section.Figures.front().Marks.push_back({{threshold->Freq, *level}, "T" + std::to_string(i + 1)});
  }
  if (!section.Figures.empty() && !section.Figures.front().Marks.empty())
    section.Figures.front().Title += " and thresholds (" + section.Figures.front().Marks.front().Text +
                                     (section.Figures.front().Marks.size() > 1 ? " ...)" : ")");
  // Where no power was measured it is all that says what drove the amplifier.
  add(rows_.Measures(&StepResult::FwdPwr) ? RunQuantity::Power : RunQuantity::Generator,
      rows_.Measures(&StepResult::FwdPwr) ? "Power of the amplifier" : "Level of the generator");
  if (rows_.Measures(&StepResult::Induced)) add(RunQuantity::Induced, "Induced current");
}

void Report::AddTest() {
  ReportSection& section = Section("Test definition");
  if (!info_.Test) return section.Sentences.emplace_back("The definition of the test is not known."), void();
  section.Entries = {{"Definition", Or(FileNameOf(info_.Test->File), "not saved in a file")}};
  for (auto& entry : TestInWords(info_.Test->Is)) section.Entries.push_back(std::move(entry));
}

void Report::AddCalibration() {
  ReportSection& section = Section("Level calibration");
  if (!info_.Calibration)
    return section.Sentences.emplace_back("The calibration record that the test replayed is not known."), void();
  section.Entries = {{"Record", FileNameOf(info_.Calibration->File)},
                     {"Record written on", Or(info_.CalibrationDate, kNotKnown)}};
  for (auto& entry : CalibrationInWords(info_.Calibration->Is)) section.Entries.push_back(std::move(entry));
  if (!info_.CalPoints.empty())
    section.Entries.emplace_back("Points of the record", std::to_string(info_.CalPoints.size()));
}

/// Of the tables of a station those that a test looks up.
WordEntries TablesInUse(const EquipRecord& station, const TestDefinition& test) {
  WordEntries tables;
  const bool byNetPower = test.LevelsBy(LevelingMethod::NetPower);
  if (test.MonitorProbe) tables = {{"Monitor probe", station.ProbeFile}, {"Cable loss", station.CableLossFile}};
  if (test.LevelsByPower()) tables.emplace_back("Forward power coupler", station.FwdPortFile);
  if (byNetPower) tables.emplace_back("Reverse power coupler", station.RevPortFile);
  return tables;
}

void Report::AddStation() {
  ReportSection& section = Section("Test equipment");
  if (!info_.Station && info_.Instruments.empty())
    return section.Sentences.emplace_back("The equipment of the test is not known."), void();
  section.Table.Columns = {{"Instrument", 1.2, false}, {"Definition", 2, false}, {"File", 1.6, false}};
  for (const RunInstrument& instrument : info_.Instruments)
    section.Table.Rows.push_back({instrument.Role, Or(instrument.Name, kNotStated), FileNameOf(instrument.File)});
  if (!info_.Station) return;
  section.Entries = {{"Station", FileNameOf(info_.Station->File)}};
  if (!info_.Test) return;
  for (const auto& [what, file] : TablesInUse(info_.Station->Is, info_.Test->Is))
    if (!file.empty()) section.Entries.emplace_back(what, FileNameOf(file));
}

std::string Report::TimeOf(int row) const {
  constexpr std::size_t kClock = sizeof("18:35:07") - 1;
  const auto time = info_.RowTimes.find(row);
  if (time == info_.RowTimes.end()) return {};
  return time->second.size() > kClock ? time->second.substr(time->second.size() - kClock) : time->second;
}

std::vector<ReportTable::Column> Report::StepColumns() const {
  std::vector<ReportTable::Column> columns = {
      {"Row", 0.6, false}, {"Frequency, MHz", 1.2}, {"Generator, dBm", 1}, {"Test level, dBµV", 1}};
  if (rows_.Measures(&StepResult::Induced)) columns.push_back({"Induced, dBµA", 1});
  if (rows_.Measures(&StepResult::FwdPwr)) columns.push_back({"Forward, dBm", 1});
  if (rows_.Measures(&StepResult::RevPwr)) columns.push_back({"Reverse, dBm", 1});
  columns.push_back({"Levelled by", 1.2, false});
  if (!info_.RowTimes.empty()) columns.push_back({"Time", 0.9, false});
  return columns;
}

std::string LevelledBy(const StepMarks& marks) {
  const char* const limit = marks.InducedAboveLimit ? "current limit" : marks.ForwardCapHeld ? "forward cap" : "";
  if (StayedBelow(marks)) return limit;
  const std::string reached = marks.PowerAboveTarget ? "power" : marks.SigGenAtCalibration ? "generator" : "";
  return marks.InducedAboveLimit ? reached + ", " + limit : reached;
}

std::vector<std::string> Report::StepCells(int row, const StepEntry& step) const {
  std::vector<std::string> cells = {std::to_string(row), FreqText(step.Freq)};
  if (!step.Result) {
    cells.emplace_back("the level was not held");
    return cells;
  }
  const StepResult& result = *step.Result;
  cells.push_back(LevelText(double{result.SigGenLevel}));
  const bool isBelow = StayedBelow(result.Marks) && !IsMissing(result.TestLevel);
  cells.push_back((isBelow ? "< " : "") + LevelText(double{result.TestLevel}));
  for (const auto quantity : {&StepResult::Induced, &StepResult::FwdPwr, &StepResult::RevPwr})
    if (rows_.Measures(quantity)) cells.push_back(LevelText(result.*quantity));
  cells.push_back(LevelledBy(result.Marks));
  if (!info_.RowTimes.empty()) cells.push_back(TimeOf(row));
  return cells;
}

void Report::AddSteps() {
  ReportSection& section = Section("All steps");
  section.Table.Columns = StepColumns();
  section.Table.Rows.reserve(data_.Entries().size());
  int row = 0;
  for (const RunEntry& entry : data_.Entries()) {
    ++row;
    if (const auto* const step = std::get_if<StepEntry>(&entry)) {
      section.Table.Rows.push_back(StepCells(row, *step));
      continue;
    }
    const auto& threshold = std::get<ThresholdEntry>(entry);
    section.Table.Rows.push_back({std::to_string(row), FreqText(threshold.Freq),
                                  "Threshold " + LevelText(threshold.OffsetDb) + " dB  " + threshold.Comment});
  }
  section.Notes = {
      "Levelled by: the quantity that ended the way up at this frequency. Forward cap: the forward power stood 2 dB "
      "above that of the record."};
}

void Report::AddRemarks() {
  if (!info_.Particulars.Remarks.empty()) Section("Remarks").Sentences = info_.Particulars.Remarks;
}

/// What a reader can't learn from this report.
void Report::AddGaps() {
  std::vector<std::string> gaps;
  std::string notHeld;
  for (const StepEntry* const step : rows_.Incomplete)
    if (!rows_.IsHeldElsewhere(*step)) notHeld += (notHeld.empty() ? "" : ", ") + FreqText(step->Freq);
  if (!notHeld.empty())
    gaps.push_back("At these frequencies the step failed or was halted, and its level was not held: " + notHeld +
                   " MHz.");
  if (!run_.Beside.Trouble.empty()) gaps.push_back(run_.Beside.Trouble);
  if (info_.Started.empty() && !info_.Test)
    gaps.emplace_back(
        "There is no usable information beside the run data. When the test was run, by whom, of which product, and "
        "with "
        "which definition, calibration and equipment is not known.");
  for (const std::string& trouble : run_.Run.Troubles) gaps.push_back("Run data: " + trouble);
  if (!gaps.empty()) Section("What is missing").Sentences = std::move(gaps);
}

}  // namespace

RunReportText ReportOf(const OpenedRun& run, bool allSteps) {
  return Report(run, allSteps).Take();
}

}  // namespace hylden
