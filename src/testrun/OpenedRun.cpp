#include "testrun/OpenedRun.h"

#include <cmath>
#include <string_view>

#include "documents/TestSummary.h"
#include "testrun/RunFilter.h"
#include "text/Duration.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

/// A section that leaves out what is not known.
class Section {
 public:
  explicit Section(const char* heading) : section_{heading, {}} {}

  void Line(const std::string& name, const std::string& text) {
    if (!text.empty()) section_.Lines.emplace_back(name, text);
  }
  void Always(const std::string& name, const std::string& text) { Line(name, text.empty() ? "not known" : text); }
  void PutInto(std::vector<InfoSection>& page) {
    if (!section_.Lines.empty()) page.push_back(std::move(section_));
  }

 private:
  InfoSection section_;
};

std::string LengthText(double seconds) {
  return seconds > 0 ? DurationText(seconds) : std::string();
}

std::string SeamText(const RunInfo& info, const std::vector<RunEntry>& rows) {
  std::string text;
  for (const int seam : info.Seams) {
    text += (text.empty() ? "row " : ", row ") + std::to_string(seam);
    if (static_cast<std::size_t>(seam) > rows.size()) continue;
    const double freq =
        std::visit([](const auto& entry) { return entry.Freq; }, rows[static_cast<std::size_t>(seam - 1)]);
    text += " (" + ShortestText(freq) + " MHz)";
  }
  return text;
}

void AddFile(std::vector<InfoSection>& page, const OpenedRun& run) {
  Section section("Run data");
  section.Line("File", run.File);
  section.Line("Rows", RowCounts(run.Rows()) + (run.Run.ThresholdsOnly ? " (a file of thresholds only)" : ""));
  section.Line("Information", run.Beside.Info ? RunInfoFile(run.File)
                              : run.Beside.Trouble.empty()
                                  ? "There is none beside this file: when, with what and for whom is not known."
                                  : run.Beside.Trouble);
  if (run.Beside.Info) section.Line("", run.Beside.Trouble);
  section.PutInto(page);
}

void AddTroubles(std::vector<InfoSection>& page, const OpenedRun& run) {
  constexpr std::size_t kShown = 100;
  const std::vector<std::string>& troubles = run.Run.Troubles;
  Section section("Not read");
  for (std::size_t i = 0; i < troubles.size() && i < kShown; ++i) section.Line({}, troubles[i]);
  if (troubles.size() > kShown) section.Line({}, "... and " + std::to_string(troubles.size() - kShown) + " more.");
  section.PutInto(page);
}

void AddRun(std::vector<InfoSection>& page, const RunInfo& info, const std::vector<RunEntry>& rows) {
  Section section("Run");
  section.Always("Outcome", info.Outcome);
  section.Always("Started", info.Started);
  section.Always("Ended", info.Ended);
  const std::string ofWhat = info.Seams.empty() ? "" : ", last part";
  section.Always("Took" + ofWhat, LengthText(info.ActualSeconds));
  section.Line("Predicted" + ofWhat, LengthText(info.PredictedSeconds));
  section.Line("Planned steps", info.PlannedSteps > 0 ? std::to_string(info.PlannedSteps) : "");
  section.Line("Continued at", SeamText(info, rows));
  section.Line("Instruments", info.Notice.empty() && !info.Program.empty() ? "real" : info.Notice);
  section.Line("Program", info.Program);
  section.Line("Account", info.User);
  section.PutInto(page);
}

void AddParticulars(std::vector<InfoSection>& page, const RunParticulars& particulars) {
  Section section("Tested");
  section.Line("Laboratory", particulars.Lab);
  section.Line("Customer", particulars.Customer);
  section.Line("Product", particulars.Product);
  section.Line("Operator", particulars.Operator);
  section.Line("Ambient", particulars.Ambient);
  for (const std::string& remark : particulars.Remarks) section.Line("Remark", remark);
  section.PutInto(page);
}

/// The lines of the summary, which stand as "   Name: text".
void AddTest(std::vector<InfoSection>& page, const RunInfo& info) {
  if (!info.Test) return;
  constexpr std::size_t kTitleLines = 2;
  Section section("Test");
  section.Line("Test definition", info.Test->File);
  const CalInfoRec calibration = info.Calibration ? info.Calibration->Is : CalInfoRec();
  const auto lines = TestSummaryLines(info.Test->Is, calibration, SummaryForm::Page);
  for (std::size_t i = kTitleLines; i < lines.size(); ++i) {
    const std::string line(Trim(lines[i]));
    const auto colon = line.find(": ");
    if (colon == std::string::npos)
      section.Line({}, line.ends_with(':') ? "" : line);
    else
      section.Line(line.substr(0, colon), line.substr(colon + 2));
  }
  section.PutInto(page);
}

void AddCalibration(std::vector<InfoSection>& page, const RunInfo& info) {
  if (!info.Calibration) return;
  Section section("Calibration");
  section.Line("Record", info.Calibration->File);
  section.Line("Written on", info.CalibrationDate);
  section.Line("Range, MHz", info.Calibration->Is.FreqRange);
  section.Line("Points", std::to_string(info.CalPoints.size()));
  section.PutInto(page);
}

void AddStation(std::vector<InfoSection>& page, const RunInfo& info) {
  Section section("Station");
  if (info.Station) section.Line("Equipment", info.Station->File);
  for (const RunInstrument& instrument : info.Instruments)
    section.Line(instrument.Role, instrument.Name + (instrument.File.empty() ? "" : " (" + instrument.File + ")"));
  section.PutInto(page);
}

}  // namespace

RunCurveContext OpenedRun::CurveContext() const {
  RunCurveContext context;
  if (!Beside.Info || !Beside.Info->Test) return context;
  const TestDefinition& test = Beside.Info->Test->Is;
  context.ImpedanceOhms = test.EUTCircuitImpedance;
  context.ByNetPower = test.LevelsBy(LevelingMethod::NetPower);
  std::vector<double> frequencies;
  frequencies.reserve(Rows().size());
  for (const RunEntry& row : Rows())
    if (const auto* const step = std::get_if<StepEntry>(&row)) frequencies.push_back(step->Freq);
  context.Aims = AimsOf(test, clsCalFile(Beside.Info->CalPoints), frequencies);
  return context;
}

Result<OpenedRun> OpenRun(const std::string& file) {
  std::string text;
  if (Done read = Trapped("OpenRun", file, [&] { text = ReadTextFile(file); }); !read)
    return Because(std::move(read).error());
  Result<SavedRun> run = RunDataOf(text);
  if (!run) return Because(std::move(run).error());
  return OpenedRun{file, *std::move(run), ReadRunInfo(file, text)};
}

std::vector<InfoSection> InfoSections(const OpenedRun& run) {
  std::vector<InfoSection> page;
  AddFile(page, run);
  AddTroubles(page, run);
  if (!run.Beside.Info) return page;
  const RunInfo& info = *run.Beside.Info;
  AddRun(page, info, run.Rows());
  AddParticulars(page, info.Particulars);
  AddTest(page, info);
  AddCalibration(page, info);
  AddStation(page, info);
  return page;
}

}  // namespace hylden
