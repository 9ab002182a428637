#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hylden {

/// Shortest text of a number: 15 significant digits for a double, 7 for a single; plain decimals while at most 15 (7)
/// digits stand before the point and at most 15 (7) after it are needed, else exponent form with at least two exponent
/// digits. 0.15 is "0.15", 1/30 is "3.33333333333333E-02", 1E15 is "1E+15". A negative zero is "0".
std::string ShortestText(double value);
std::string ShortestText(float value);

/// Print style: the shortest text with a blank for the missing sign and without the leading zero: " .15", "-.5", " 5".
std::string PrintText(double value);
std::string PrintText(float value);
std::string PrintText(std::int32_t value);

/// The number at the start of a text, reading as far as one goes: blanks are skipped, then sign, digits, point and
/// exponent (E or D). A text without a leading number gives 0; a number too large for a double gives infinity.
double LeadingNumber(std::string_view text);

/// What a comma between the digits before the point is. It may well be somebody's decimal sign, so a number that is
/// typed or stands in a file has none; only a script's conversions pass over it.
enum class Commas { Refused, Grouping };

/// Whether the whole text is a number that a double can hold: surrounding blanks, one sign, digits with a point, an
/// exponent (E or D); or "&H1F", "&O17". An empty text is none.
bool IsNumeric(std::string_view text, Commas commas = Commas::Refused);

/// Conversions of a whole text (what IsNumeric accepts). Whole numbers are taken to the nearest, ties to even; "&HFFFF"
/// fills the bits of its type. @throws RuntimeError TypeMismatch when it is no number, Overflow when the type cannot
/// hold it.
double ToDouble(std::string_view text, Commas commas = Commas::Refused);
float ToSingle(std::string_view text);
std::int16_t ToInt16(std::string_view text);
std::int32_t ToInt32(std::string_view text);
/// "True" and "False" in any case; a number counts as true when it is not zero.
bool ToFlag(std::string_view text);

/// The nearest whole number, ties to the even neighbour.
double NearestWhole(double value);

/// "True" or "False".
std::string FlagText(bool value);

/// The text without the blanks (space, tab) around it.
std::string_view Trim(std::string_view text);

}  // namespace hylden
