#pragma once

#include "instruments/InstrumentTrial.h"
#include "instruments/PM.h"

namespace hylden {

/// The Test menu of frmPMeter: channel 1.
class PMTrial : public InstrumentTrial {
 public:
  using Driver = PM;

  PMTrial(Shell& shell, Instruments& instruments);

 private:
  Done Read();

  PM& pm_;
};

}  // namespace hylden
