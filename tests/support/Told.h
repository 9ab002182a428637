#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

/// The texts in which it is told that something was not done; none when it was, or when there is nothing to tell.
template <class T>
std::vector<std::string> Told(const Result<T>& result) {
  std::vector<std::string> texts;
  if (!result)
    for (const Message& box : result.error().Boxes()) texts.push_back(box.text);
  return texts;
}

/// Whether it failed, and is told in one box that begins with the text.
template <class T>
testing::AssertionResult FailsWith(const Result<T>& result, const std::string& beginning) {
  const auto texts = Told(result);
  if (texts.size() == 1 && texts[0].starts_with(beginning)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << testing::PrintToString(texts) << " instead of " << beginning;
}

/// Whether it failed without a word.
template <class T>
bool FailsSilently(const Result<T>& result) {
  return !result && result.error().IsSilent();
}

}  // namespace hylden
