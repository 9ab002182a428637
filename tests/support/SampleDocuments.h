#pragma once

#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "text/RecordFile.h"

namespace hylden {

// Documents as their files hold them, with another value in every field where it can be.

constexpr const char* kEquipFile =
    "C:\\lab, one\\gen.sg\r\n 18\r\n/lab/meter.mtr\r\n 13\r\n/lab/power.pm\r\n 5\r\n 2\r\n .5\r\ncable.los\r\n"
    "f.fac\r\nr.fac\r\nmax.pwr\r\none.prb\r\n 1\r\nTrue\r\nFalse\r\n 215\r\n"
    "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n";
constexpr const char* kCalSetupFile =
    " .15 \r\n 80 \r\n 1 \r\n .5 \r\n 1 \r\n/lists/x.lst\r\n 0 \r\n 10 \r\n/levels/y.lev\r\n 7 \r\n 3.25 \r\n"
    "-30 \r\n 1 \r\n 2 \r\n 0 \r\n 25 \r\n 6 \r\n .3 \r\nCDN M2, no. 4711\r\n25 W\r\n 3 \r\n10 V\r\n .1 \r\n"
    "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n";
constexpr const char* kTestFile =
    "/cal/CDN, 10 V.hyinfo\r\n .15\r\n 80\r\nTrue\r\n 1\r\n .5\r\n 1\r\n 2\r\nFalse\r\n/lists/x.lst\r\n 3\r\n"
    " 1\r\n 80\r\n 1\r\n 10\r\n .4\r\n 1.5\r\n 4.6\r\nFalse\r\n 1\r\n-6\r\n 1.25\r\n .2\r\n 2\r\nFalse\r\n-3\r\n"
    "True\r\nFalse\r\n 2\r\n 150\r\nTrue\r\nFalse\r\n1\r\n2\r\n3\r\n4\r\n5\r\n";

template <class Record>
Record RecordOf(const char* file) {
  Record record;
  RecordReader reader(file);
  Fields(reader, record);
  return record;
}

}  // namespace hylden
