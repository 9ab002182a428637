#pragma once

#include "documents/CalInfo.h"
#include "documents/Equip.h"
#include "documents/TestSetup.h"

namespace hylden {

/// The documents of one station; one record of each kind.
struct Documents {
  Documents(Shell& shell, Instruments& instruments)
      : equip(shell, instruments), calInfo(shell), testSetup(shell, calInfo) {}

  Equip equip;
  CalInfo calInfo;
  TestSetup testSetup;
};

}  // namespace hylden
