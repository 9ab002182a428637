#include "shell/FormFields.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "shell/FormInput.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

template <class Number>
Number Converted(const std::string& text) {
  if constexpr (std::is_same_v<Number, float>)
    return ToSingle(text);
  else if constexpr (std::is_same_v<Number, double>)
    return ToDouble(text);
  else
    return ToInt16(text);
}

/// The code of the option that is chosen.
std::optional<std::int32_t> ChosenOf(const FormEntries& entries, FormWalker::Controls options) {
  std::int32_t option = 0;
  for (const char* const control : options) {
    if (entries.IsTicked(control)) return option;
    ++option;
  }
  return std::nullopt;
}

}  // namespace

bool FormEntries::operator==(const FormEntries& other) const {
  return std::equal(begin(), end(), other.begin(), other.end(),
                    [](const auto& a, const auto& b) { return a.first == b.first && SameEntry(a.second, b.second); });
}

std::string PromptText(const EntryFailure& failure, const std::string& box) {
  if (failure.Reason == EntryFailure::Kind::Message) return failure.Text;
  const bool isNumber = failure.Reason == EntryFailure::Kind::OutOfRange;
  std::string text = isNumber ? kOutOfRangeText : kNotANumberText;
  if (box.empty()) return text;
  const char* const noLimits = isNumber ? "a number nearer to 0" : "any number";
  return text + "\r\n" + box + ": " + (failure.Range.empty() ? noLimits : failure.Range);
}

bool NumberCheck::Passes(double number) const {
  return (AboveLowest ? number > Lowest : number >= Lowest) && (BelowHighest ? number < Highest : number <= Highest) &&
         (!Whole || number == NearestWhole(number));
}

NumberCheck NumberCheck::And(const NumberCheck& other) const {
  NumberCheck both = *this;
  if (other.Lowest > Lowest) both.Lowest = other.Lowest, both.AboveLowest = other.AboveLowest;
  if (other.Highest < Highest) both.Highest = other.Highest, both.BelowHighest = other.BelowHighest;
  if (both.Highest < both.Lowest || (both.Highest == both.Lowest && (both.AboveLowest || both.BelowHighest)))
    return *this;
  both.Whole = Whole || other.Whole;
  if (Unit.empty()) both.Unit = other.Unit;
  if (Also.empty()) both.Also = other.Also;
  return both;
}

std::string NumberCheck::Text() const {
  constexpr double kNoLimit = std::numeric_limits<float>::max();
  const bool hasLowest = Lowest > -kNoLimit, hasHighest = Highest < kNoLimit;
  std::string text = Whole ? "a whole number, " : "";
  if (hasLowest && hasHighest && !AboveLowest && !BelowHighest)
    text += ShortestText(Lowest) + " to " + ShortestText(Highest);
  else if (hasLowest)
    text += (AboveLowest ? "above " : "at least ") + ShortestText(Lowest) + (hasHighest ? ", " : "");
  if (hasHighest && (!hasLowest || AboveLowest || BelowHighest))
    text += (BelowHighest ? "below " : "at most ") + ShortestText(Highest);
  if (!text.empty() && !Unit.empty()) text.append(" ").append(Unit);
  if (!Also.empty()) text.append(text.empty() ? "" : ", ").append(Also);
  return text;
}

std::string NumberField::Text() const {
  return std::visit(
      [this](const auto* field) {
        using Number = std::remove_cvref_t<decltype(*field)>;
        const std::conditional_t<std::is_integral_v<Number>, double, Number> number = *field;
        return Pattern.empty() ? ShortestText(number) : Format(number, Pattern);
      },
      Field);
}

bool NumberField::Take(const std::string& text, bool checked) const {
  return std::visit(
      [&](auto* field) {
        using Number = std::remove_pointer_t<decltype(field)>;
        // A whole number is checked as it was typed, a real one as it is kept.
        const double typed = std::is_integral_v<Number> ? ToDouble(text) : static_cast<double>(Converted<Number>(text));
        if (checked && !Check.Passes(typed)) return false;
        *field = Converted<Number>(text);
        return true;
      },
      Field);
}

void EntryShower::Options(Controls options, std::int32_t& code, std::optional<std::int32_t>) {
  std::int32_t option = 0;
  for (const char* const control : options) Entries.Add(control, option++ == code);
  if (code < 0 || code >= option) Unknown.emplace_back(options.begin(), options.end());
}

void EntryTaker::Text(const char* control, std::string& field) {
  if (Takes()) field = Entries[control];
}

void EntryTaker::Tick(const char* control, bool& field) {
  if (Takes()) field = Entries.IsTicked(control);
}

void EntryTaker::Box(const char* control, const NumberField& number) {
  if (!Takes()) return;
  const std::string& text = Entries[control];
  if (!IsNumeric(text)) return Refuse({control, EntryFailure::Kind::NotANumber});
  try {
    if (!number.Take(text, refuses_ == Refuses::Range)) Refuse({control, EntryFailure::Kind::OutOfRange});
  } catch (const RuntimeError&) {  // a number, but too large for the field
    Refuse({control, EntryFailure::Kind::OutOfRange});
  }
}

void EntryTaker::Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) {
  if (Takes()) code = ChosenOf(Entries, options).value_or(none.value_or(code));
}

void EntryTaker::Check(const char* control, bool passes, const NumberCheck&) {
  if (Takes() && !passes) Refuse({control, EntryFailure::Kind::OutOfRange});
}

void EntryTaker::Require(const char* control, bool passes, const char* message) {
  if (Takes() && !passes) Refuse({control, EntryFailure::Kind::Message, message});
}

void EntryTaker::Replace(const char* control, double& field, double by, const std::string& notice) {
  if (!Takes()) return;
  field = by;
  Entries[control] = ShortestText(by);
  Notices.push_back(notice);
}

void EntryTaker::Refuse(EntryFailure failure) {
  const Refuses least = failure.Reason == EntryFailure::Kind::NotANumber ? Refuses::Text : Refuses::Range;
  if (refuses_ >= least) Failure = std::move(failure);
}

void RefusalFinder::Box(const char* control, const NumberField& number) {
  const std::string& text = entries_[control];
  try {
    Find(control, IsNumeric(text) && number.Take(text, true));
  } catch (const RuntimeError&) {  // a number, but too large for the field
    Find(control, false);
  }
}

void RefusalFinder::Options(Controls options, std::int32_t& code, std::optional<std::int32_t> none) {
  code = ChosenOf(entries_, options).value_or(none.value_or(code));
}

void RefusalFinder::Find(const char* control, bool passes) {
  if (!passes) Refused.insert(control);
}

void RangeFinder::Check(const char* control, bool, const NumberCheck& range) {
  if (control == control_) Found = Found.And(range);
}

bool UseFinder::Uses(bool inUse, Controls controls) {
  for (const char* const control : controls) Used[control] = inUse;
  return true;  // what stands below may hang on a condition of its own
}

}  // namespace hylden
