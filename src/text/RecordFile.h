#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {

/// Walks a record's field list over the lines of a file, one field per line. Numeric and flag lines are converted as
/// whole lines; a field read before a failure keeps its new value.
/// A record is described once: `template <class F> void Fields(F& f, Record& r) { f.Text(r.Name); ... }`.
class RecordReader {
 public:
  explicit RecordReader(std::string text) : lines_(std::move(text)) {}

  void Text(std::string& field);
  void Int16(std::int16_t& field);
  void Int32(std::int32_t& field);
  void Single(float& field);
  void Double(double& field);
  void Flag(bool& field);
  /// An empty line reads as false.
  void FlagOrEmpty(bool& field);
  /// A Text field that files of an older form lack: empty when the file has ended.
  void OptionalText(std::string& field);
  /// Lines written empty for later fields; never read.
  void SpareLines(int) {}

 private:
  LineReader lines_;
};

/// Writes a record's fields as lines, in the form RecordReader reads: numbers in print style, flags as True or False.
class RecordWriter {
 public:
  /// @param trailingBlank  numbers are followed by a blank, as the formats of the calibration setup have it
  explicit RecordWriter(bool trailingBlank = false) : trailingBlank_(trailingBlank) {}

  void Text(const std::string& field);
  void Int16(std::int16_t field);
  void Int32(std::int32_t field);
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
  RecordReader reader(ReadTextFile(path));
  Fields(reader, record);
}

/// The record as its file holds it.
template <class Record>
std::string RecordText(const Record& record, bool trailingBlank = false) {
  RecordWriter writer(trailingBlank);
  Fields(writer, const_cast<Record&>(record));
  return writer.Content();
}

/// @throws RuntimeError; the old file stays whole on failure.
template <class Record>
void SaveRecord(const std::string& path, const Record& record, bool trailingBlank = false) {
  ReplaceFile(path, RecordText(record, trailingBlank));
}

/// Equality of every field, as the file would show it.
template <class Record>
bool SameRecord(const Record& a, const Record& b) {
  return RecordText(a) == RecordText(b);
}

}  // namespace hylden
