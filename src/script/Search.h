#pragma once

#include <string>
#include <string_view>

#include "script/Budget.h"

namespace hylden::script {

inline constexpr std::size_t kNotFound = std::u16string_view::npos;

/// A text to be searched, folded once when case does not count; it refers to the text given.
class SearchText {
 public:
  SearchText(std::u16string_view text, bool ignoresCase, Budget& budget);
  SearchText(const SearchText&) = delete;
  SearchText& operator=(const SearchText&) = delete;

  /// Where the wanted text first stands at or after a position. Every comparison is charged, for a search can cost the
  /// product of both lengths.
  std::size_t Find(const SearchText& wanted, std::size_t from) const;
  /// Where it last stands, ending at or before a position.
  std::size_t FindLast(const SearchText& wanted, std::size_t end) const;
  std::size_t Size() const { return chars_.size(); }

 private:
  bool Matches(const SearchText& wanted, std::size_t at) const;

  std::u16string folded_;
  std::u16string_view chars_;
  Budget& budget_;
};

}  // namespace hylden::script
