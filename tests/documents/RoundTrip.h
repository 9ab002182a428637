#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/FieldChanger.h"
#include "support/SameRecord.h"
#include "support/TempDir.h"
#include "text/RecordFile.h"

namespace hylden {

/// For every field: a document that differs in that field alone is saved, loaded into another document and saved again.
/// The field must come back, and both files must be the same bytes.
template <class Document, class Record>
void ExpectEveryFieldSurvives(const TempDir& directory, Document& document, Document& other, Record Document::*record) {
  const Record plain = document.*record;
  for (int field = 0; field < FieldCount(plain); ++field) {
    SCOPED_TRACE(field);
    const Record changed = WithChangedField(plain, field);
    ASSERT_FALSE(SameRecord(changed, plain));
    document.*record = changed;
    ASSERT_TRUE(document.SaveDef(directory.File("first")));
    ASSERT_TRUE(other.LoadDef(directory.File("first")));
    EXPECT_TRUE(SameRecord(other.*record, changed));
    ASSERT_TRUE(other.SaveDef(directory.File("second")));
    EXPECT_EQ(directory.Read("first"), directory.Read("second"));
  }
  document.*record = plain;
}

}  // namespace hylden
