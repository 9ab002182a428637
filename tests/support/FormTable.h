#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "shell/FormFields.h"
#include "text/RecordFile.h"

namespace hylden {

/// A text that a box refuses on a form that shows a record.
template <class Record>
struct Refusal {
  void (*change)(Record&);  ///< of the good record
  const char* control;
  const char* text;
  EntryFailure::Kind reason = EntryFailure::Kind::OutOfRange;
};

/// Types each text on the form of the good record and looks at the failure that `validate` returns.
template <class Record, std::size_t N, class Validate>
void ExpectRefused(const Refusal<Record> (&refusals)[N], const Record& good, const Validate& validate) {
  for (const Refusal<Record>& row : refusals) {
    SCOPED_TRACE(std::string(row.control) + ": " + row.text);
    Record record = good;
    if (row.change) row.change(record);
    FormEntries entries = EntriesShowing(record);
    entries[row.control] = row.text;
    const std::optional<EntryFailure> failure = validate(entries);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->Control, row.control);
    EXPECT_EQ(failure->Reason, row.reason);
  }
}

/// The boxes of a form that hold numbers and are in use.
class NumberBoxes : public FormWalker {
 public:
  void Text(const char*, std::string&) override {}
  void Tick(const char*, bool&) override {}
  bool Uses(bool inUse, Controls) override { return inUse; }
  std::vector<std::string> names;

 private:
  void Box(const char* control, const NumberField&) override { names.emplace_back(control); }
  void Options(Controls, std::int32_t&, std::optional<std::int32_t>) override {}
};

/// Every number box in use on the form of the record refuses what is no number. @return how many there are
template <class Record, class Validate>
std::size_t ExpectNumbersWanted(Record record, const Validate& validate) {
  NumberBoxes boxes;
  FormFields(boxes, record);
  for (const std::string& box : boxes.names)
    for (const char* text : {"", "x", "0,15", "1%"}) {
      SCOPED_TRACE(box + ": " + text);
      FormEntries entries = EntriesShowing(record);
      entries[box] = text;
      const std::optional<EntryFailure> failure = validate(entries);
      EXPECT_TRUE(failure && failure->Control == box && failure->Reason == EntryFailure::Kind::NotANumber);
    }
  return boxes.names.size();
}

/// What the form shows of a record is what another record takes from it.
template <class Record, class Validate>
void ExpectComesBack(const Record& record, const Validate& validate) {
  FormEntries entries = EntriesShowing(record);
  Record taken;
  const std::optional<EntryFailure> failure = validate(entries, taken);
  EXPECT_FALSE(failure) << failure->Control;
  EXPECT_EQ(RecordText(taken), RecordText(record));
}

}  // namespace hylden
