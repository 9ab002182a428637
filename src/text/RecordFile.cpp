#include "text/RecordFile.h"

#include <utility>

#include "text/LinePlace.h"

namespace hylden {

std::string OneLine(const std::string& field) {
  std::string line;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\r' && i + 1 < field.size() && field[i + 1] == '\n') continue;
    line += field[i] == '\r' || field[i] == '\n' ? ' ' : field[i];
  }
  return line;
}

std::string RecordReader::NextLine() {
  if (lines_.AtEnd()) {
    const RuntimeError end(ErrorNumber::InputPastEndOfFile);
    throw RuntimeError(end.Number(),
                       end.Description() + ", behind line " + std::to_string(line_) + " of the " + std::string(kind_));
  }
  ++line_;
  return lines_.ReadLine();
}

template <class Conversion>
auto RecordReader::Converted(Conversion convert) {
  const std::string line = NextLine();
  try {
    return convert(line);
  } catch (const RuntimeError& error) {
    throw RuntimeError(error.Number(), error.Description() + LinePlace(line_, line, std::string(" of the ") + kind_));
  }
}

void RecordReader::Text(std::string& field) {
  field = NextLine();
}

void RecordReader::Int16(std::int16_t& field) {
  field = Converted(ToInt16);
}

void RecordReader::Int32(std::int32_t& field) {
  field = Converted(ToInt32);
}

void RecordReader::Single(float& field) {
  field = Converted(ToSingle);
}

void RecordReader::Double(double& field) {
  field = Converted([](const std::string& line) { return ToDouble(line); });
}

void RecordReader::Flag(bool& field) {
  field = Converted(ToFlag);
}

void RecordReader::FlagOrEmpty(bool& field) {
  field = !lines_.AtEnd() && Converted([](const std::string& line) { return !Trim(line).empty() && ToFlag(line); });
}

void RecordReader::OptionalText(std::string& field) {
  field = lines_.AtEnd() ? std::string() : NextLine();
}

void RecordWriter::Text(const std::string& field) {
  lines_.push_back(OneLine(field));
}

void RecordWriter::Int16(std::int16_t field) {
  Number(PrintText(std::int32_t{field}));
}

void RecordWriter::Int32(std::int32_t field) {
  Number(PrintText(field));
}

void RecordWriter::Single(float field) {
  Number(PrintText(field));
}

void RecordWriter::Double(double field) {
  Number(PrintText(field));
}

void RecordWriter::Flag(bool field) {
  lines_.push_back(FlagText(field));
}

void RecordWriter::SpareLines(int count) {
  lines_.insert(lines_.end(), static_cast<std::size_t>(count), "");
}

std::string RecordWriter::Content() const {
  return JoinLines(lines_);
}

void RecordWriter::Number(std::string text) {
  if (trailingBlank_) text += ' ';
  lines_.push_back(std::move(text));
}

}  // namespace hylden
