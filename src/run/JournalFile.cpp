#include "run/JournalFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <utility>

#include "run/JournalText.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::string_view kTitle = "Hylden journal ", kForm = "3", kFormerForms = "12";
/// By JournalKind.
constexpr std::array<std::string_view, 3> kKinds = {"test", "level calibration", "insertion loss"};
constexpr std::string_view kLastOfHead = "rows";

std::optional<JournalKind> KindOf(std::string_view text) {
  const auto* const found = std::find(kKinds.begin(), kKinds.end(), text);
  if (found == kKinds.end()) return std::nullopt;
  return static_cast<JournalKind>(found - kKinds.begin());
}

template <class Number>
bool Take(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

/// "87AB12CD" for a checksum, and back.
std::string HexText(std::uint32_t number) {
  char text[9];
  std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(number));
  return text;
}
bool TakeHex(std::string_view text, std::uint32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() && end == text.data() + text.size();
}

/// "key value" in two.
std::pair<std::string_view, std::string_view> SplitAtBlank(std::string_view text) {
  const std::size_t blank = text.find(' ');
  if (blank == std::string_view::npos) return {text, {}};
  return {text.substr(0, blank), text.substr(blank + 1)};
}

/// Takes a journal in, line by line.
class Reading {
 public:
  void Line(std::string_view line);
  Result<Journal> Outcome() &&;

 private:
  bool Entry(std::string_view key, std::string_view value);
  bool Row(std::string_view numbered);
  bool Part(std::string_view text);
  bool Seam(std::string_view number);

  Journal journal_;
  bool hasKind_ = false, headEnded_ = false, lastIsDamaged_ = false;
  std::size_t damagedInHead_ = 0;
};

void Reading::Line(std::string_view line) {
  if (std::exchange(lastIsDamaged_, false)) ++(headEnded_ ? journal_.Damaged : damagedInHead_);
  const std::optional<std::string> text = UnsealedLine(line);
  const auto [key, value] = text ? SplitAtBlank(*text) : std::pair<std::string_view, std::string_view>();
  lastIsDamaged_ = !text || !Entry(key, value);
}

bool Reading::Entry(std::string_view key, std::string_view value) {
  JournalHead& head = journal_.Head;
  if (key == "row") return Row(value);
  if (key == "seam") return Seam(value);
  if (key == kLastOfHead) return headEnded_ = true;
  if (key == "kind") {
    const auto kind = KindOf(value);
    head.Kind = kind.value_or(head.Kind);
    return hasKind_ = kind.has_value();
  }
  if (key == "planned") return Take(value, head.Planned);
  if (key == "part") return Part(value);
  if (key == "info") return head.Info.emplace_back(value), true;
  const std::pair<std::string_view, std::string*> texts[] = {{"program", &head.Program},     {"name", &head.Name},
                                                             {"started", &head.Started},     {"file", &head.File},
                                                             {"equipment", &head.Equipment}, {"notice", &head.Notice}};
  for (const auto& [name, text] : texts)
    if (key == name) return *text = value, true;
  return false;
}

bool Reading::Row(std::string_view numbered) {
  const auto [number, values] = SplitAtBlank(numbered);
  int row = 0;
  if (!Take(number, row)) return false;
  headEnded_ = true;  // its last line is damaged when it was not seen
  journal_.Rows[row] = values;
  return true;
}

bool Reading::Part(std::string_view text) {
  const auto [checksum, name] = SplitAtBlank(text);
  RunPart part{std::string(name), 0};
  if (!TakeHex(checksum, part.Checksum)) return false;
  journal_.Head.Parts.push_back(std::move(part));
  return true;
}

bool Reading::Seam(std::string_view number) {
  int row = 0;
  if (!Take(number, row)) return false;
  journal_.Seams.insert(row);
  return true;
}

Result<Journal> Reading::Outcome() && {
  const bool wholeHead = hasKind_ && damagedInHead_ == 0;
  if (!wholeHead && !journal_.Rows.empty()) return Because("Its head is damaged");
  return std::move(journal_);
}

}  // namespace

std::string_view TextOf(JournalKind kind) {
  return kKinds[static_cast<std::size_t>(kind)];
}

std::string HeadLines(const JournalHead& head) {
  std::string lines = SealedLine(std::string(kTitle).append(kForm));
  const auto add = [&](std::string_view key, const std::string& value) {
    lines += SealedLine(std::string(key) + " " + OneLine(value));
  };
  add("kind", std::string(TextOf(head.Kind)));
  add("program", head.Program);
  add("name", head.Name);
  add("started", head.Started);
  if (!head.File.empty()) add("file", head.File);
  if (!head.Equipment.empty()) add("equipment", head.Equipment);
  add("planned", std::to_string(head.Planned));
  if (!head.Notice.empty()) add("notice", head.Notice);
  for (const std::string& line : head.Info) add("info", line);
  for (const RunPart& part : head.Parts) add("part", HexText(part.Checksum) + " " + part.Name);
  return lines + SealedLine(kLastOfHead);
}

std::string RowLine(int number, std::string_view values) {
  return SealedLine("row " + std::to_string(number) + " " + std::string(values));
}

std::string SeamLine(int row) {
  return SealedLine("seam " + std::to_string(row));
}

Result<Journal> ReadJournal(std::string bytes) {
  LineReader lines(std::move(bytes));
  if (lines.AtEnd()) return Journal();
  const std::string first = lines.ReadLine();
  const std::optional<std::string> title = UnsealedLine(first);
  if (!title && lines.AtEnd() && SealedLine(std::string(kTitle).append(kForm)).starts_with(first)) return Journal();
  if (!title || !title->starts_with(kTitle)) return Because("It is no journal");
  const std::string form = title->substr(kTitle.size());
  const bool isFormer = form.size() == 1 && kFormerForms.find(form) != std::string_view::npos;
  if (form != kForm && !isFormer) return Because("It is of another version of Hylden");
  Reading reading;
  while (!lines.AtEnd()) reading.Line(lines.NextLine());
  return std::move(reading).Outcome();
}

}  // namespace hylden
