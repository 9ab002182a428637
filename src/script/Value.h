#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hylden {
class clsHyLib;
}

namespace hylden::script {

/// The kinds of a value; the numeric kinds stand in the order in which a sum takes the wider of two.
enum class Kind : std::uint8_t {
  Empty,
  Null,
  Boolean,
  Byte,
  Integer,
  Long,
  Single,
  Double,
  Currency,
  Date,
  String,
  Array,
  Object,
  Nothing,
  Missing,  ///< an argument left out between commas
};

/// One value of the script language. Texts and arrays are shared and never change, so a copy is cheap.
class Value {
 public:
  /// Empty.
  Value() = default;

  static Value Null() { return Value(Kind::Null); }
  static Value Nothing() { return Value(Kind::Nothing); }
  static Value Missing() { return Value(Kind::Missing); }
  static Value Boolean(bool value) { return Value(Kind::Boolean, std::int32_t{value ? -1 : 0}); }
  static Value Byte(std::uint8_t value) { return Value(Kind::Byte, std::int32_t{value}); }
  static Value Integer(std::int16_t value) { return Value(Kind::Integer, std::int32_t{value}); }
  static Value Long(std::int32_t value) { return Value(Kind::Long, value); }
  static Value Single(float value) { return Value(Kind::Single, value); }
  static Value Double(double value) { return Value(Kind::Double, value); }
  /// @param scaled  the amount times 10000
  static Value Currency(std::int64_t scaled) { return Value(Kind::Currency, scaled); }
  /// @param serial  days since 30 December 1899, the time of day as fraction
  static Value Date(double serial) { return Value(Kind::Date, serial); }
  static Value Text(std::u16string text);
  static Value Text(std::u16string_view text) { return Text(std::u16string(text)); }
  static Value Text(const char16_t* text) { return Text(std::u16string(text)); }
  /// @throws ScriptError OutOfStackSpace when arrays are nested too deeply
  static Value Array(std::vector<Value> elements);
  static Value Object(clsHyLib& library) { return Value(Kind::Object, &library); }

  Kind Type() const { return kind_; }
  bool Is(Kind kind) const { return kind_ == kind; }

  /// Boolean (-1 or 0), Byte, Integer and Long.
  std::int32_t Whole() const { return std::get<std::int32_t>(data_); }
  float SingleValue() const { return std::get<float>(data_); }
  /// Double and Date.
  double Real() const { return std::get<double>(data_); }
  /// Currency times 10000.
  std::int64_t Scaled() const { return std::get<std::int64_t>(data_); }
  /// The text of a String; lives as long as any copy of the value.
  std::u16string_view Chars() const { return *std::get<TextPointer>(data_); }
  const std::vector<Value>& Elements() const { return std::get<ArrayPointer>(data_)->elements; }
  clsHyLib& Library() const { return *std::get<clsHyLib*>(data_); }

 private:
  struct ArrayData {
    std::vector<Value> elements;
    int nesting = 1;
  };
  using TextPointer = std::shared_ptr<const std::u16string>;
  using ArrayPointer = std::shared_ptr<const ArrayData>;
  using Data = std::variant<std::int32_t, float, double, std::int64_t, TextPointer, ArrayPointer, clsHyLib*>;

  explicit Value(Kind kind, Data data = std::int32_t{0}) : kind_(kind), data_(std::move(data)) {}

  Kind kind_ = Kind::Empty;
  Data data_ = std::int32_t{0};
};

}  // namespace hylden::script
