#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "text/Numbers.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {

/// Walks a record's field list over the lines of a file, one field per line. Numeric and flag lines are converted as
/// whole lines; a field read before a failure keeps its new value. What is no value of its field is named
/// with its line.
/// A record is described once: `template <class F> void Fields(F& f, Record& r) { f.Text(r.Name); ... }`.
class RecordReader {
 public:
  /// @param kind  what the file is, e.g. "test definition"; failures name it
  explicit RecordReader(std::string text, std::string_view kind = "file") : lines_(std::move(text)), kind_(kind) {}

  void Text(std::string& field);
  void Int16(std::int16_t& field);
  void Int32(std::int32_t& field);
  /// A code that is kept as a whole number; one that the program does not know is kept as it is.
  template <class E>
  void Code(E& field) {
    static_assert(std::is_same_v<std::underlying_type_t<E>, std::int32_t>);
    auto code = static_cast<std::int32_t>(field);
    Int32(code);
    field = static_cast<E>(code);
  }
  void Single(float& field);
  void Double(double& field);
  void Flag(bool& field);
  /// An empty line reads as false, and so does a file that has ended: some editors cut empty lines at the end.
  void FlagOrEmpty(bool& field);
  /// A Text field that files of an older form lack: empty when the file has ended.
  void OptionalText(std::string& field);
  /// Lines written empty for later fields; never read.
  void SpareLines(int) {}

 private:
  std::string NextLine();
  /// The next line through a conversion of text/Numbers.h.
  template <class Conversion>
  auto Converted(Conversion convert);

  LineReader lines_;
  std::string kind_;
  std::size_t line_ = 0;  ///< number of the line read last
};

/// What a record's file is called in a report; a record of no name is a file.
template <class Record>
std::string_view FileKindOf(const Record& record) {
  if constexpr (requires { FileKind(record); })
    return FileKind(record);
  else
    return "file";
}

/// A text as a file holds it: a field is one line, and a line end within it would shift every later one.
std::string OneLine(const std::string& field);

/// Writes a record's fields as lines, in the form RecordReader reads: numbers in print style, flags as True or False.
class RecordWriter {
 public:
  /// @param trailingBlank  numbers are followed by a blank, as the formats of the calibration setup have it
  explicit RecordWriter(bool trailingBlank = false) : trailingBlank_(trailingBlank) {}

  void Text(const std::string& field);
  void Int16(std::int16_t field);
  void Int32(std::int32_t field);
  template <class E>
  void Code(E field) {
    Int32(static_cast<std::int32_t>(field));
  }
  void Single(float field);
  void Double(double field);
  void Flag(bool field);
  void FlagOrEmpty(bool field) { Flag(field); }
  void OptionalText(const std::string& field) { Text(field); }
  void SpareLines(int count);

  /// The whole file, every line ended by CR LF.
  std::string Content() const;

 private:
  void Number(std::string text);
  bool trailingBlank_;
  std::vector<std::string> lines_;
};

/// @throws RuntimeError (file, InputPastEndOfFile, TypeMismatch, Overflow); fields before the failing one keep their
/// new values.
template <class Record>
void LoadRecord(const std::string& path, Record& record) {
  RecordReader reader(ReadTextFile(path), FileKindOf(record));
  Fields(reader, record);
}

/// The record as its file holds it.
template <class Record>
std::string RecordText(Record record, bool trailingBlank = false) {
  RecordWriter writer(trailingBlank);
  Fields(writer, record);
  return writer.Content();
}

/// @throws RuntimeError; the old file stays whole on failure.
template <class Record>
void SaveRecord(const std::string& path, const Record& record, bool trailingBlank = false) {
  ReplaceFile(path, RecordText(record, trailingBlank));
}

}  // namespace hylden
