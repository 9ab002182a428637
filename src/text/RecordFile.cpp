#include "text/RecordFile.h"

#include <utility>

namespace hylden {
namespace {

/// A field is one line: a line end within it would shift every later field of the file.
std::string OneLine(const std::string& field) {
  std::string line;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\r' && i + 1 < field.size() && field[i + 1] == '\n') continue;
    line += field[i] == '\r' || field[i] == '\n' ? ' ' : field[i];
  }
  return line;
}

}  // namespace

void RecordReader::Text(std::string& field) {
  field = lines_.ReadLine();
}

void RecordReader::Int16(std::int16_t& field) {
  field = ToInt16(lines_.ReadLine());
}

void RecordReader::Int32(std::int32_t& field) {
  field = ToInt32(lines_.ReadLine());
}

void RecordReader::Single(float& field) {
  field = ToSingle(lines_.ReadLine());
}

void RecordReader::Double(double& field) {
  field = ToDouble(lines_.ReadLine());
}

void RecordReader::Flag(bool& field) {
  field = ToFlag(lines_.ReadLine());
}

void RecordReader::FlagOrEmpty(bool& field) {
  const std::string line = lines_.ReadLine();
  field = !Trim(line).empty() && ToFlag(line);
}

void RecordReader::OptionalText(std::string& field) {
  field = lines_.AtEnd() ? std::string() : lines_.ReadLine();
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
