#include "app/Recovery.h"

#include <array>
#include <set>
#include <utility>

#include "calibration/InsertionLossText.h"
#include "run/JournalValues.h"
#include "testrun/RunDataJournal.h"
#include "testrun/RunInfo.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"

namespace hylden {

namespace {

/// Reads the rows of a journal.
/// @param read  a row of its line
template <class Row, class Read>
std::vector<Row> RowsOf(const Journal& journal, Recovery& recovery, Read read) {
  std::vector<Row> rows;
  int expected = 1;
  for (const auto& [number, line] : journal.Rows) {
    std::optional<Row> row = read(line);
    recovery.Gapless = recovery.Gapless && row && number == expected++;
    row ? rows.push_back(std::move(*row)) : void(++recovery.Damaged);
  }
  recovery.Recorded = rows.size();
  return rows;
}

double FreqOf(const RunEntry& entry) {
  return std::visit([](const auto& e) { return e.Freq; }, entry);
}

/// The frequency of the last row, where there is one.
template <class Rows, class Freq>
double LastOf(const Rows& rows, Freq freq) {
  return rows.empty() ? 0 : freq(rows.back());
}

void TakeTest(const Journal& journal, Recovery& recovery) {
  RunData data;
  auto entries = RowsOf<RunEntry>(journal, recovery, RunEntryOf);
  recovery.LastMHz = LastOf(entries, FreqOf);
  recovery.Count = entries.size();
  for (RunEntry& entry : entries) data.Add(std::move(entry));
  for (const int seam : journal.Seams) data.AddSeam(seam);
  recovery.Rows = std::move(data);
}

/// @throws RuntimeError where the head lacks lines of the description
void TakeRecord(const Journal& journal, Recovery& recovery) {
  Recovery::Record record{RowsOf<CalRow>(journal, recovery, RowOfLine<CalRow>), {}};
  RecordReader info(JoinLines(journal.Head.Info));
  Fields(info, record.Info);
  recovery.LastMHz = LastOf(record.Rows, [](const CalRow& row) { return row.Freq; });
  recovery.Count = record.Rows.size();
  record.Info = InfoOfRows(std::move(record.Info), record.Rows, recovery.Head.Planned);
  recovery.Rows = std::move(record);
}

void TakeCable(const Journal& journal, Recovery& recovery) {
  const auto points = RowsOf<CablePoint>(journal, recovery, RowOfLine<CablePoint>);
  auto complete = CompletePoints(points);
  recovery.LastMHz = LastOf(complete.empty() ? points : complete, [](const CablePoint& point) { return point.Freq; });
  recovery.Count = complete.size();
  recovery.Rows = std::move(complete);
}

std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

std::string JournalsIn(const std::string& programDirectory) {
  return programDirectory + "/journals";
}

bool Recovery::FillsFile() const {
  constexpr std::size_t kFewestOfRecord = 2;
  return Count >= (Head.Kind == JournalKind::LevelCalibration ? kFewestOfRecord : 1);
}

Result<Recovery> RecoveryOf(std::string bytes) {
  const Result<Journal> journal = ReadJournal(std::move(bytes));
  if (!journal) return Because(journal.error());
  constexpr std::array kTakers = {TakeTest, TakeRecord, TakeCable};  // by JournalKind
  Recovery recovery{.Head = journal->Head, .Rows = {}, .Damaged = journal->Damaged};
  if (journal->Rows.empty()) return recovery;
  try {
    kTakers[static_cast<std::size_t>(recovery.Head.Kind)](*journal, recovery);
  } catch (const RuntimeError&) {
    return Because("Its head is damaged");
  }
  return recovery;
}

std::optional<std::string> Obstacle(const Recovery& recovery) {
  if (recovery.Recorded == 0) return "It holds no row";
  if (!recovery.Gapless) return "A row of it is damaged: it can be saved only";
  return std::nullopt;
}

bool IsUnfinished(const Recovery& recovery) {
  std::size_t done = recovery.Count;
  if (const auto* const data = std::get_if<RunData>(&recovery.Rows)) {
    // Behind manual mode a step may have several rows.
    std::set<double> frequencies;
    for (const RunEntry& entry : data->Entries())
      if (!IsThreshold(entry)) frequencies.insert(FreqOf(entry));
    done = frequencies.size();
  }
  return done < recovery.Head.Planned;
}

FormerRun<RunData> FormerTest(ResumedJournal journal) {
  Recovery& former = journal.Former;
  return {std::move(former.Head), std::get<RunData>(std::move(former.Rows)), std::move(journal.Journal)};
}

FormerRun<CalRows> FormerCalibration(ResumedJournal journal) {
  Recovery& former = journal.Former;
  return {std::move(former.Head), std::get<Recovery::Record>(std::move(former.Rows)).Rows, std::move(journal.Journal)};
}

std::string DescriptionOf(const Recovery& recovery) {
  constexpr std::array kKinds = {"Test", "Level calibration", "Insertion loss"};  // by JournalKind
  const JournalHead& head = recovery.Head;
  if (recovery.Recorded == 0 && head.Started.empty()) return "It ends before its first row";
  std::string text = std::string(kKinds[static_cast<std::size_t>(head.Kind)]) + (head.Name.empty() ? "" : " ") +
                     head.Name + ", begun " + head.Started + ": " + Counted(recovery.Count, "row") + " of " +
                     Counted(head.Planned, "step");
  if (recovery.Recorded > recovery.Count)
    text += ", " + Counted(recovery.Recorded - recovery.Count, "direct reading") + " without the insert reading";
  if (recovery.Recorded > 0) text += ", the last at " + ShortestText(recovery.LastMHz) + " MHz";
  if (recovery.Damaged > 0) text += ", " + Counted(recovery.Damaged, "damaged line") + " left out";
  return head.Notice.empty() ? text : text + " (" + head.Notice + ")";
}

Done SaveRecovery(const Recovery& recovery, const std::string& path) {
  struct Save {
    const std::string& Path;
    const JournalHead& Head;
    Done operator()(const RunData& data) const {
      RunInfo info;
      info.Program = Head.Program;
      info.Notice = Head.Notice;
      info.Started = Head.Started;
      info.Outcome = runend::kRecovered;
      info.PlannedSteps = static_cast<int>(Head.Planned);
      info.Seams = data.Seams();
      Done saved = FileRunData(data, Path, false);
      if (saved) (void)FileRunInfo(info, Path);  // the rows are what the journal was kept for
      return saved;
    }
    Done operator()(const Recovery::Record& record) const { return SaveCal(Path, record.Rows, record.Info); }
    Done operator()(const std::vector<CablePoint>& points) const { return FileInsertionLoss(points, Path); }
  };
  if (!recovery.FillsFile()) return Because("The journal holds too little for a file");
  return std::visit(Save{path, recovery.Head}, recovery.Rows);
}

}  // namespace hylden
