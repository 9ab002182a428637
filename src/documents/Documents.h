#pragma once

#include "documents/CalInfo.h"
#include "documents/CalSetup.h"
#include "documents/Equip.h"
#include "documents/TestSetup.h"

namespace hylden {

/// The documents of one station; one record of each kind.
struct Documents {
  Documents(Shell& shell, const Instruments& instruments) : equip(shell, instruments), testSetup(shell, calInfo) {}
  Documents(const Documents&) = delete;
  Documents& operator=(const Documents&) = delete;

  Equip equip;
  CalSetup calSetup;
  CalInfo calInfo;
  TestSetup testSetup;
};

}  // namespace hylden
