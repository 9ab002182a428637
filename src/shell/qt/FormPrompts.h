#pragma once

class QLineEdit;

namespace hylden {

class Dialogs;

inline constexpr char kNotANumberText[] = "Value not a number, re-enter";
inline constexpr char kOutOfRangeText[] = "Number outside valid range, re-enter";

/// Leads the operator to a box whose text is no number: focus, selection (when it is visible), and the message.
void NotANumberPrompt(QLineEdit& box, Dialogs& dialogs);
/// The same for a number outside its range.
void OutOfRangePrompt(QLineEdit& box, Dialogs& dialogs);

}  // namespace hylden
