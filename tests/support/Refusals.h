#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "documents/Equip.h"

namespace hylden {

/// An entry on a form that is refused: a change to good entries, and the box that is shown.
template <class Entries>
struct Refusal {
  void (*change)(Entries&);
  const char* control;
  int tab;
  EntryFailure::Kind reason;
};

/// Makes each change to the good entries and looks at the failure that `validate` returns.
template <class Entries, std::size_t N, class Validate>
void ExpectRefused(const Refusal<Entries> (&refusals)[N], const Entries& good, const Validate& validate) {
  for (std::size_t i = 0; i < N; ++i) {
    SCOPED_TRACE(testing::Message() << "row " << i << ", " << refusals[i].control);
    Entries entries = good;
    refusals[i].change(entries);
    const std::optional<EntryFailure> failure = validate(entries);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->Control, refusals[i].control);
    EXPECT_EQ(failure->Tab, refusals[i].tab);
    EXPECT_EQ(failure->Reason, refusals[i].reason);
  }
}

}  // namespace hylden
