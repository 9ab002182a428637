#include "testrun/RunInfo.h"

#include <cstdio>
#include <filesystem>
#include <utility>

#include "run/JournalText.h"
#include "run/JournalValues.h"
#include "testrun/RunData.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

/// The first form has no end that could be missing.
constexpr std::string_view kTitle = "Hylden run information 2", kFirstTitle = "Hylden run information 1",
                           kFamily = "Hylden run information ";
constexpr std::string_view kEnd = "[End]";
constexpr const char *kLine = "Line", *kFile = "File";

/// To which run data the information belongs.
struct DataKey {
  std::string Checksum;
};

DataKey KeyOf(std::string_view runText) {
  char text[16];
  std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(Crc32(runText)));
  return {text};
}

/// Writes sections of "key=value" lines. What is empty is left out.
class KeyWriter {
 public:
  void Section(const char* name) { section_ = std::string("[") + name + "]"; }
  void Text(const char* key, const std::string& value) {
    if (value.empty()) return;
    if (!section_.empty()) lines_.push_back(std::exchange(section_, {}));
    lines_.push_back(std::string(key) + "=" + OneLine(value));
  }
  void Number(const char* key, double value) {
    if (value != 0) Text(key, ShortestText(value));
  }
  void Whole(const char* key, int value) { Number(key, value); }
  void Texts(const char* key, const std::vector<std::string>& values) {
    for (const std::string& value : values) Text(key, value.empty() ? " " : value);
  }
  void Rows(const char* key, const std::set<int>& rows) {
    for (const int row : rows) Whole(key, row);
  }
  void Times(const std::map<int, std::string>& times) {
    for (const auto& [row, time] : times) Text(std::to_string(row).c_str(), time);
  }
  template <class Record>
  void Document(const char* section, const std::optional<DocumentCopy<Record>>& document) {
    if (!document) return;
    Section(section);
    Text(kFile, document->File.empty() ? " " : document->File);
    LineReader lines(RecordText(document->Is));
    while (!lines.AtEnd()) {
      const std::string line = lines.ReadLine();
      Text(kLine, line.empty() ? " " : line);
    }
  }
  void Points(const char* key, const std::vector<CalPoint>& points) {
    for (const CalPoint& point : points) Text(key, RowLineOf(point));
  }
  void List(const std::vector<RunInstrument>& instruments) {
    for (const RunInstrument& instrument : instruments) {
      Text("Role", instrument.Role);
      Text("Name", instrument.Name.empty() ? " " : instrument.Name);
      Text(kFile, instrument.File.empty() ? " " : instrument.File);
    }
  }

  std::string Content() const {
    std::vector<std::string> lines = lines_;
    lines.emplace_back(kEnd);
    return JoinLines(lines);
  }

 private:
  std::string section_;  ///< not written yet
  std::vector<std::string> lines_{std::string(kTitle)};
};

/// Reads them. What is missing, or no value, leaves what was there: a damaged line costs itself, and is told.
class KeyReader {
 public:
  explicit KeyReader(LineReader lines) {
    while (!lines.AtEnd()) Take(lines.NextLine());
  }

  void Section(const char* name) { section_ = &sections_[name]; }
  void Text(const char* key, std::string& value) {
    for (const auto& [name, text] : *section_)
      if (name == key) return void(value = text);
  }
  void Number(const char* key, double& value) {
    std::string text;
    Text(key, text);
    if (IsNumeric(text))
      value = ToDouble(text);
    else if (!text.empty())
      NoteBad(key);
  }
  void Whole(const char* key, int& value) {
    std::string text;
    Text(key, text);
    if (const auto whole = WholeOf(text))
      value = *whole;
    else if (!text.empty())
      NoteBad(key);
  }
  void Texts(const char* key, std::vector<std::string>& values) {
    for (const auto& [name, text] : *section_)
      if (name == key) values.push_back(text);
  }
  void Rows(const char* key, std::set<int>& rows) {
    for (const auto& [name, text] : *section_)
      if (name == key) TakeOr(name, WholeOf(text), [&](int row) { rows.insert(row); });
  }
  void Times(std::map<int, std::string>& times) {
    for (const auto& [name, text] : *section_)
      TakeOr(name, WholeOf(name), [&, &time = text](int row) { times[row] = time; });
  }
  template <class Record>
  void Document(const char* section, std::optional<DocumentCopy<Record>>& document) {
    Section(section);
    if (section_->empty()) return;
    DocumentCopy<Record> copy;
    Text(kFile, copy.File);
    std::vector<std::string> lines;
    Texts(kLine, lines);
    try {
      RecordReader reader(JoinLines(lines));
      Fields(reader, copy.Is);
      document = std::move(copy);
    } catch (const RuntimeError&) {
      NoteBad(section);  // half a document would be worse than none
    }
  }
  void Points(const char* key, std::vector<CalPoint>& points) {
    for (const auto& [name, text] : *section_)
      if (name == key) TakeOr(name, RowOfLine<CalPoint>(text), [&](const CalPoint& point) { points.push_back(point); });
  }
  void List(std::vector<RunInstrument>& instruments) {
    for (const auto& [name, text] : *section_) {
      if (name == "Role") instruments.push_back({text, {}, {}});
      if (instruments.empty()) continue;
      if (name == "Name") instruments.back().Name = text;
      if (name == kFile) instruments.back().File = text;
    }
  }

  bool HasEnd() const { return sections_.contains("End"); }
  /// The first line, or key, that could not be read; empty where all could.
  const std::string& Bad() const { return bad_; }

 private:
  using Lines = std::vector<std::pair<std::string, std::string>>;

  void Take(std::string_view line) {
    if (line.starts_with('[') && line.ends_with(']')) {
      section_ = &sections_[std::string(line.substr(1, line.size() - 2))];
      return;
    }
    const auto sign = line.find('=');
    if (!section_ || sign == std::string_view::npos)
      NoteBad(line);
    else
      section_->emplace_back(std::string(line.substr(0, sign)), Value(line.substr(sign + 1)));
  }
  template <class Read, class Use>
  void TakeOr(std::string_view key, const std::optional<Read>& value, const Use& use) {
    if (value)
      use(*value);
    else
      NoteBad(key);
  }
  void NoteBad(std::string_view what) {
    if (bad_.empty() && !Trim(what).empty()) bad_ = what;
  }
  static std::string Value(std::string_view text) { return text == " " ? std::string() : std::string(text); }
  static std::optional<int> WholeOf(const std::string& text) {
    if (!IsNumeric(text)) return std::nullopt;
    const double value = ToDouble(text);
    return value >= 1 && value <= 1e9 ? std::optional(static_cast<int>(value)) : std::nullopt;
  }

  std::map<std::string, Lines> sections_;
  Lines* section_ = nullptr;
  std::string bad_;
};

/// Everything that the file has, in its order.
template <class F>
void Fields(F& f, RunInfo& info, DataKey& data) {
  f.Section("Run");
  f.Text("Checksum", data.Checksum);
  f.Text("Program", info.Program);
  f.Text("Notice", info.Notice);
  f.Text("User", info.User);
  f.Text("Started", info.Started);
  f.Text("Ended", info.Ended);
  f.Text("Outcome", info.Outcome);
  f.Number("Predicted", info.PredictedSeconds);
  f.Number("Actual", info.ActualSeconds);
  f.Whole("Steps", info.PlannedSteps);
  f.Whole("Completed", info.CompletedSteps);
  f.Rows("Continued", info.Seams);
  f.Section("Report");
  f.Text("Lab", info.Particulars.Lab);
  f.Text("Customer", info.Particulars.Customer);
  f.Text("Product", info.Particulars.Product);
  f.Text("Operator", info.Particulars.Operator);
  f.Text("Ambient", info.Particulars.Ambient);
  f.Texts("Remark", info.Particulars.Remarks);
  f.Document("Test", info.Test);
  f.Document("Station", info.Station);
  f.Section("Instruments");
  f.List(info.Instruments);
  f.Document("Calibration", info.Calibration);
  f.Section("Calibrated");
  f.Text("Date", info.CalibrationDate);
  f.Points("Point", info.CalPoints);
  f.Section("Rows");
  f.Times(info.RowTimes);
}

}  // namespace

std::string RunInfoFile(const std::string& runFile) {
  return runFile + (runFile.ends_with(".run") ? "info" : ".runinfo");
}

std::string RunChecksum(const RunData& data) {
  return KeyOf(RunFileText(data, false)).Checksum;
}

std::string RunInfoText(RunInfo info, std::string_view runText) {
  KeyWriter writer;
  DataKey data = KeyOf(runText);
  Fields(writer, info, data);
  return writer.Content();
}

namespace {

RunInfoBeside ReadBeside(const std::string& runFile, std::string_view runText) {
  const std::string file = RunInfoFile(runFile);
  std::string text;
  try {
    text = ReadTextFile(file);
  } catch (const RuntimeError& error) {
    const bool isThere = error.Number() != static_cast<int>(ErrorNumber::FileNotFound);
    return {{}, isThere ? "The information beside the run data can't be read: " + error.Description() + "." : ""};
  }
  LineReader lines(std::move(text));
  const std::string title = lines.AtEnd() ? std::string() : lines.ReadLine();
  if (title != kTitle && title != kFirstTitle)
    return {{},
            file + (title.starts_with(kFamily) ? " is of another version of Hylden" : " is no run information") +
                ": its first line is not \"" + std::string(kTitle) + "\"."};
  KeyReader reader(std::move(lines));
  RunInfo info;
  DataKey data;
  Fields(reader, info, data);
  if (data.Checksum != KeyOf(runText).Checksum)
    return {{}, file + " belongs to other run data, or these were changed since: it is not used."};
  std::string trouble;
  if (title == kTitle && !reader.HasEnd())
    trouble = file + " ends too early: some of it is not known.";
  else if (!reader.Bad().empty())
    trouble = file + " is damaged at \"" + reader.Bad() + "\": what can't be read is left out.";
  return {std::move(info), std::move(trouble)};
}

}  // namespace

RunInfoBeside ReadRunInfo(const std::string& runFile, std::string_view runText) {
  RunInfoBeside beside = ReadBeside(runFile, runText);
  beside.Checksum = KeyOf(runText).Checksum;
  return beside;
}

Done FileRunInfo(const RunInfo& info, const std::string& runFile, const std::string& checksum) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(SavePath(runFile), error)) return {};  // nothing lies beside a device
  const std::string file = RunInfoFile(runFile);
  return Trapped("FileRunInfo", file, [&]() -> Done {
    const std::string text = ReadTextFile(runFile);
    if (!checksum.empty() && checksum != KeyOf(text).Checksum)
      return Because("The run data have changed since they were opened; open them again:\r\n" + runFile);
    ReplaceFile(file, RunInfoText(info, text));
    return {};
  });
}

}  // namespace hylden
