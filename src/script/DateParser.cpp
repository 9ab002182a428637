#include <algorithm>
#include <vector>

#include "script/DateTime.h"
#include "script/Unicode.h"

namespace hylden::script {
namespace {

struct Number {
  int value = 0;
  std::size_t digits = 0;
  /// Year before month and day: written with more than two digits, or larger than any day.
  bool LooksLikeYear() const { return digits > 2 || value > 31; }
};

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}
bool IsLetter(char16_t c) {
  const char16_t lower = LowerCase(c);
  return lower >= u'a' && lower <= u'z';
}

/// Whether the word is the name or an abbreviation (three letters or more) of it.
bool Abbreviates(std::u16string_view word, std::string_view name) {
  if (word.size() < 3 || word.size() > name.size()) return false;
  return Folded(word) == Folded(Widen(name.substr(0, word.size())));
}

/// Reads one text; every step returns false when the text is no date.
class DateReader {
 public:
  DateReader(std::u16string_view text, int yearWhenMissing) : text_(text), yearWhenMissing_(yearWhenMissing) {}

  std::optional<double> Read() {
    while (position_ < text_.size()) {
      if (!ReadItem()) return std::nullopt;
    }
    const bool hasDate = !numbers_.empty() || month_ != 0;
    if (!hasDate && !hasTime_) return std::nullopt;
    if (hasDate && !ResolveDate()) return std::nullopt;
    const std::int64_t days = hasDate ? DaysFromCivil(year_, month_, day_) : 0;
    return SerialOf(days, seconds_);
  }

 private:
  bool ReadItem() {
    const char16_t c = text_[position_];
    if (IsDigit(c)) return ReadNumber();
    if (IsLetter(c)) return ReadWord();
    ++position_;
    if (c == u'/' || c == u'-') {
      separated_ = true;
      // A separator stands between two numbers or a number and a month.
      return position_ > 1 && position_ < text_.size() && (!numbers_.empty() || month_ != 0);
    }
    return c == u' ' || c == u'\t' || (c == u',' && (!numbers_.empty() || month_ != 0 || weekdaySeen_));
  }

  bool TakeNumber(Number& number) {
    number = {};
    while (position_ < text_.size() && IsDigit(text_[position_])) {
      if (++number.digits > 4) return false;
      number.value = number.value * 10 + (text_[position_++] - u'0');
    }
    return number.digits > 0;
  }

  bool ReadNumber() {
    Number number;
    if (!TakeNumber(number)) return false;
    if (Peek() == u':' || AtHalfDayMark()) return ReadTime(number);
    numbers_.push_back(number);
    return numbers_.size() <= 3;
  }

  bool ReadTime(Number hour) {
    if (hasTime_) return false;
    hasTime_ = true;
    Number minute, second;
    if (Peek() == u':' && (++position_, !TakeNumber(minute))) return false;
    if (Peek() == u':' && (++position_, !TakeNumber(second))) return false;
    if (hour.value > 23 || minute.value > 59 || second.value > 59) return false;
    if (AtHalfDayMark()) {
      if (hour.value > 12) return false;
      SkipBlanks();
      const bool afternoon = LowerCase(text_[position_]) == u'p';
      position_ += 2;
      hour.value = hour.value % 12 + (afternoon ? 12 : 0);
    }
    seconds_ = hour.value * 3600 + minute.value * 60 + second.value;
    return true;
  }

  bool AtHalfDayMark() const {
    std::size_t at = position_;
    while (at < text_.size() && text_[at] == u' ') ++at;
    if (at + 2 > text_.size() || (at + 2 < text_.size() && IsLetter(text_[at + 2]))) return false;
    const char16_t first = LowerCase(text_[at]);
    return (first == u'a' || first == u'p') && LowerCase(text_[at + 1]) == u'm';
  }

  bool ReadWord() {
    const std::size_t start = position_;
    while (position_ < text_.size() && IsLetter(text_[position_])) ++position_;
    const std::u16string_view word = text_.substr(start, position_ - start);
    for (int month = 1; month <= 12; ++month) {
      if (!Abbreviates(word, MonthText(month))) continue;
      if (month_ != 0) return false;
      month_ = month;
      return true;
    }
    for (int weekday = 1; weekday <= 7 && !weekdaySeen_; ++weekday) {
      weekdaySeen_ = Abbreviates(word, WeekdayText(weekday));
    }
    return weekdaySeen_;
  }

  char16_t Peek() const { return position_ < text_.size() ? text_[position_] : u'\0'; }
  void SkipBlanks() {
    while (Peek() == u' ') ++position_;
  }

  bool ResolveDate() {
    const bool resolved = month_ != 0 ? ResolveNamedMonth() : separated_ && ResolveNumbers();
    if (!resolved || year_ < 100 || year_ > 9999 || month_ < 1 || month_ > 12) return false;
    return day_ >= 1 && day_ <= DaysInMonth(year_, month_);
  }

  bool ResolveNamedMonth() {
    if (numbers_.empty() || numbers_.size() > 2) return false;
    if (numbers_.size() == 1 && numbers_[0].LooksLikeYear()) return Set(numbers_[0], month_, 1);
    if (numbers_.size() == 1) return SetWithoutYear(month_, numbers_[0].value);
    const bool yearFirst = numbers_[0].LooksLikeYear();
    return Set(numbers_[yearFirst ? 0 : 1], month_, numbers_[yearFirst ? 1 : 0].value);
  }

  bool ResolveNumbers() {
    if (numbers_.size() < 2) return false;
    const int first = numbers_[0].value, second = numbers_[1].value;
    if (numbers_.size() == 2) {
      if (numbers_[1].LooksLikeYear()) return Set(numbers_[1], first, 1);
      if (numbers_[0].LooksLikeYear()) return Set(numbers_[0], second, 1);
      return first > 12 ? SetWithoutYear(second, first) : SetWithoutYear(first, second);
    }
    if (numbers_[0].LooksLikeYear()) return Set(numbers_[0], second, numbers_[2].value);
    return first > 12 ? Set(numbers_[2], second, first) : Set(numbers_[2], first, second);
  }

  bool Set(Number year, int month, int day) {
    year_ = year.digits <= 2 ? FullYear(year.value) : year.value;
    month_ = month;
    day_ = day;
    return true;
  }
  bool SetWithoutYear(int month, int day) {
    year_ = yearWhenMissing_;
    month_ = month;
    day_ = day;
    return yearWhenMissing_ != 0;
  }

  std::u16string_view text_;
  int yearWhenMissing_;
  std::size_t position_ = 0;
  std::vector<Number> numbers_;
  bool separated_ = false, hasTime_ = false, weekdaySeen_ = false;
  int year_ = 0, month_ = 0, day_ = 0;
  int seconds_ = 0;
};

}  // namespace

std::optional<double> ParseDate(std::u16string_view text, int yearWhenMissing) {
  return DateReader(text, yearWhenMissing).Read();
}

}  // namespace hylden::script
