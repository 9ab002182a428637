#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "shell/FormEntries.h"

namespace hylden {

/// Which numbers a box takes.
struct NumberCheck {
  double Lowest = -std::numeric_limits<double>::infinity();
  double Highest = std::numeric_limits<double>::infinity();
  bool AboveLowest = false;   ///< the lowest itself is refused
  bool BelowHighest = false;  ///< the highest itself is refused
  bool Whole = false;
  std::string_view Unit = {};  ///< of the numbers
  std::string_view Also = {};  ///< what else is asked of them

  bool Passes(double number) const;
  constexpr NumberCheck In(std::string_view unit) const {
    NumberCheck check = *this;
    check.Unit = unit;
    return check;
  }
  /// Both at once; only this one where no number passes both.
  NumberCheck And(const NumberCheck& other) const;
  /// In words: "above 0, below 80 MHz"; empty where every number passes.
  std::string Text() const;
};
constexpr NumberCheck Above(double bound) {
  return {.Lowest = bound, .AboveLowest = true};
}
constexpr NumberCheck AtLeast(double lowest) {
  return {.Lowest = lowest};
}
constexpr NumberCheck Below(double bound) {
  return {.Highest = bound, .BelowHighest = true};
}
constexpr NumberCheck AtMost(double highest) {
  return {.Highest = highest};
}
constexpr NumberCheck WholeWithin(double lowest, double highest) {
  return {.Lowest = lowest, .Highest = highest, .Whole = true};
}

/// A record's number behind its box.
struct NumberField {
  std::variant<double*, float*, std::int16_t*> Field;
  NumberCheck Check;
  std::string_view Pattern;  ///< how it is shown; empty: its shortest text

  std::string Text() const;
  /// Takes a text over that is numeric. @return false, and nothing is taken, for a number that does not pass
  /// @throws RuntimeError when the field can't hold it
  bool Take(const std::string& text, bool checked) const;
};

/// Walks the list of a form's fields. A record that a form edits has one list, in the order in which the form is
/// checked:
///
///     void FormFields(FormWalker& f, CableSetup& s) {
///       f.Number("txtStartFreq", s.StartFreq, Above(0));
///       f.Choice({"optLinStep", "optLogStep", "optListStep"}, s.StepType);
///       if (f.Uses(s.StepType == StepType::Log, {"txtLogStep"})) f.Number("txtLogStep", s.LogStep, Above(0));
///     }
///
/// Showing, reading, checking and enabling walk it. What the list does to the record beside the fields, it does where
/// `Takes` says so only.
class FormWalker {
 public:
  using Controls = std::initializer_list<const char*>;
  virtual ~FormWalker() = default;

  /// A box of free text, or a label that shows a file.
  virtual void Text(const char* control, std::string& field) = 0;
  /// A box with a number, which is checked before it is taken.
  template <class Field>
  void Number(const char* control, Field& field, const NumberCheck& check = {}, std::string_view pattern = {}) {
    Box(control, {&field, check, pattern});
  }
  virtual void Tick(const char* control, bool& field) = 0;
  /// The same for a field that holds 0 for off; what it holds for on stays while it is ticked.
  template <std::integral Flag>
  void Tick(const char* control, Flag& field) {
    bool ticked = field != 0;
    Tick(control, ticked);
    if (ticked != (field != 0)) field = ticked ? 1 : 0;
  }
  /// Options in the order of their codes, from 0. A code that none stands for chooses none.
  /// @param none  the code when none is chosen; the field is kept when left out
  template <class Code>
  void Choice(Controls options, Code& field, std::type_identity_t<std::optional<Code>> none = {}) {
    auto code = static_cast<std::int32_t>(field);
    Options(options, code, none ? std::optional(static_cast<std::int32_t>(*none)) : std::nullopt);
    field = static_cast<Code>(code);
  }

  /// The controls, with their labels, can be used under this condition only. @return whether to go on to what hangs on
  /// it
  virtual bool Uses(bool inUse, Controls controls) = 0;
  /// The fields before are being taken over, and none has failed.
  virtual bool Takes() const { return false; }
  /// What was taken is refused as out of its range, where the range applies, or with a message of its own.
  void Range(const char* control, double number, const NumberCheck& range, bool applies = true) {
    Check(control, !applies || range.Passes(number), range);
  }
  virtual void Check(const char* /*control*/, bool /*passes*/, const NumberCheck& /*range*/) {}
  virtual void Require(const char* /*control*/, bool /*passes*/, const char* /*message*/) {}
  /// Another number stands for what was taken, with a notice.
  virtual void Replace(const char* /*control*/, double& /*field*/, double /*by*/, const std::string& /*notice*/) {}

 protected:
  virtual void Box(const char* control, const NumberField& number) = 0;
  virtual void Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) = 0;
};

/// Shows a record's fields.
class EntryShower : public FormWalker {
 public:
  void Text(const char* control, std::string& field) override { Entries.Add(control, field); }
  void Tick(const char* control, bool& field) override { Entries.Add(control, field); }
  bool Uses(bool, Controls) override { return true; }

  FormEntries Entries;
  std::vector<std::vector<std::string>> Unknown;  ///< the options of each code that none stands for

 private:
  void Box(const char* control, const NumberField& number) override { Entries.Add(control, number.Text()); }
  void Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) override;
};

/// Takes entries over into a record, in the order of its list, up to the first that is refused.
class EntryTaker : public FormWalker {
 public:
  /// What is refused: nothing (what is no number is left out), what is no number, or also what is out of its range.
  enum class Refuses { Nothing, Text, Range };

  explicit EntryTaker(FormEntries entries, Refuses refuses = Refuses::Range)
      : Entries(std::move(entries)), refuses_(refuses) {}

  void Text(const char* control, std::string& field) override;
  void Tick(const char* control, bool& field) override;
  bool Uses(bool inUse, Controls) override { return inUse && Takes(); }
  bool Takes() const override { return !Failure; }
  void Check(const char* control, bool passes, const NumberCheck& range) override;
  void Require(const char* control, bool passes, const char* message) override;
  void Replace(const char* control, double& field, double by, const std::string& notice) override;

  FormEntries Entries;
  std::optional<EntryFailure> Failure;
  std::vector<std::string> Notices;

 private:
  void Box(const char* control, const NumberField& number) override;
  void Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) override;
  void Refuse(EntryFailure failure);

  Refuses refuses_;
};

/// Takes entries over as far as it can and finds every one that would be refused: for marks, while they are typed.
class RefusalFinder : public FormWalker {
 public:
  explicit RefusalFinder(FormEntries entries) : entries_(std::move(entries)) {}

  void Text(const char* control, std::string& field) override { field = entries_[control]; }
  void Tick(const char* control, bool& field) override { field = entries_.IsTicked(control); }
  bool Uses(bool inUse, Controls) override { return inUse; }
  bool Takes() const override { return true; }
  void Check(const char* control, bool passes, const NumberCheck&) override { Find(control, passes); }
  void Require(const char* control, bool passes, const char*) override { Find(control, passes); }

  std::set<std::string> Refused;

 private:
  void Box(const char* control, const NumberField& number) override;
  void Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) override;
  void Find(const char* control, bool passes);

  FormEntries entries_;
};

/// The controls whose entries a form that edits the record would refuse.
template <class Record>
std::set<std::string> RefusedWith(const FormEntries& entries, Record record) {
  RefusalFinder finder(entries);
  FormFields(finder, record);
  return std::move(finder.Refused);
}

/// Which controls can be used, of those that hang on a condition.
using UsedControls = std::map<std::string, bool>;

/// Finds them for a record.
class UseFinder : public FormWalker {
 public:
  void Text(const char*, std::string&) override {}
  void Tick(const char*, bool&) override {}
  bool Uses(bool inUse, Controls controls) override;

  UsedControls Used;

 private:
  void Box(const char*, const NumberField&) override {}
  void Options(Controls, std::int32_t&, std::optional<std::int32_t>) override {}
};

/// Finds which numbers a control takes, whatever hangs on a condition.
class RangeFinder : public FormWalker {
 public:
  explicit RangeFinder(std::string control) : control_(std::move(control)) {}

  void Text(const char*, std::string&) override {}
  void Tick(const char*, bool&) override {}
  bool Uses(bool, Controls) override { return true; }
  void Check(const char* control, bool, const NumberCheck& range) override;

  NumberCheck Found;

 private:
  void Box(const char* control, const NumberField& number) override { Check(control, true, number.Check); }
  void Options(Controls, std::int32_t&, std::optional<std::int32_t>) override {}

  std::string control_;
};

/// Adds the range of its control to a failure. @param record  as far as it was taken
template <class Record>
void AddRange(std::optional<EntryFailure>& failure, Record record) {
  if (!failure) return;
  RangeFinder finder(failure->Control);
  FormFields(finder, record);
  failure->Range = finder.Found.Text();
  failure->RangeHasUnit = !failure->Range.empty() && !finder.Found.Unit.empty();
}

/// The entries that show a record.
template <class Record>
FormEntries EntriesShowing(Record record) {
  EntryShower shower;
  FormFields(shower, record);
  return std::move(shower.Entries);
}

/// Takes entries over into a record; see EntryTaker. @return the first failure
template <class Record>
std::optional<EntryFailure> TakeEntries(const FormEntries& entries, Record& record,
                                        EntryTaker::Refuses refuses = EntryTaker::Refuses::Range) {
  EntryTaker taker(entries, refuses);
  FormFields(taker, record);
  AddRange(taker.Failure, record);
  return std::move(taker.Failure);
}

/// Which controls can be used with these entries, on a form that edits the record.
template <class Record>
UsedControls UsedWith(const FormEntries& entries, Record record) {
  TakeEntries(entries, record, EntryTaker::Refuses::Nothing);
  UseFinder finder;
  FormFields(finder, record);
  return std::move(finder.Used);
}

}  // namespace hylden
