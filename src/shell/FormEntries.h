#pragma once

#include <map>
#include <string>

namespace hylden {

/// An entry that a form has to have corrected: at which control, and why. The form turns to the page that holds it.
struct EntryFailure {
  enum class Kind { NotANumber, OutOfRange, Message };
  std::string Control;  ///< the control's object name, e.g. "txtSigGenAddr"
  Kind Reason = Kind::NotANumber;
  std::string Text = {};   ///< the message, when Reason is Message
  std::string Range = {};  ///< which numbers the control takes, with their unit: "above 0 MHz"; empty for any
  bool RangeHasUnit = false;

  /// The range in brackets, behind what a line says; nothing without a range.
  std::string Allowed() const { return Range.empty() ? std::string() : " (allowed: " + Range + ")"; }
};

inline constexpr char kNotANumberText[] = "Value not a number, re-enter";
inline constexpr char kOutOfRangeText[] = "Number outside valid range, re-enter";

/// What a box's prompt says: what is wrong and, below, the box and its range.
/// @param box  what the form calls it, "Start, MHz"; empty: nothing stands below
std::string PromptText(const EntryFailure& failure, const std::string& box);

/// What stands on a form, by control: the text of a box, the path on a label, whether a tick is set or an option
/// chosen.
class FormEntries {
 public:
  void Add(const std::string& control, const std::string& text) { texts_[control] = text; }
  void Add(const std::string& control, bool ticked) { texts_[control] = ticked ? kTicked : ""; }

  /// @throws std::out_of_range for a control that the form's list does not have
  std::string& operator[](const std::string& control) { return texts_.at(control); }
  const std::string& operator[](const std::string& control) const { return texts_.at(control); }
  bool IsTicked(const std::string& control) const { return !texts_.at(control).empty(); }
  void Tick(const std::string& control, bool ticked = true) { texts_.at(control) = ticked ? kTicked : ""; }

  /// By value: "80" and "80.0" are the same.
  bool operator==(const FormEntries& other) const;

  auto begin() { return texts_.begin(); }
  auto end() { return texts_.end(); }
  auto begin() const { return texts_.begin(); }
  auto end() const { return texts_.end(); }

 private:
  static constexpr const char* kTicked = "1";
  std::map<std::string, std::string> texts_;
};

}  // namespace hylden
