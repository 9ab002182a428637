#include "script/Search.h"

#include <algorithm>

#include "script/Unicode.h"

namespace hylden::script {

SearchText::SearchText(std::u16string_view text, bool ignoresCase, Budget& budget) : chars_(text), budget_(budget) {
  if (!ignoresCase) return;
  budget_.Charge(text.size());
  folded_ = Folded(text);
  chars_ = folded_;
}

bool SearchText::Matches(const SearchText& wanted, std::size_t at) const {
  const auto first = wanted.chars_.begin();
  const auto differs =
      std::mismatch(first, wanted.chars_.end(), chars_.begin() + static_cast<std::ptrdiff_t>(at)).first;
  budget_.Charge(static_cast<std::size_t>(differs - first) + 1);
  return differs == wanted.chars_.end();
}

std::size_t SearchText::Find(const SearchText& wanted, std::size_t from) const {
  for (std::size_t at = from; at + wanted.Size() <= Size(); ++at) {
    if (Matches(wanted, at)) return at;
  }
  return kNotFound;
}

std::size_t SearchText::FindLast(const SearchText& wanted, std::size_t end) const {
  if (wanted.Size() > end) return kNotFound;
  for (std::size_t at = end - wanted.Size() + 1; at-- > 0;) {
    if (Matches(wanted, at)) return at;
  }
  return kNotFound;
}

}  // namespace hylden::script
