#pragma once

#include "text/RecordFile.h"

namespace hylden {

/// Equality of every field, as the file would show it.
template <class Record>
bool SameRecord(const Record& a, const Record& b) {
  return RecordText(a) == RecordText(b);
}

}  // namespace hylden
