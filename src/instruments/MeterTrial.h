#pragma once

#include "instruments/InstrumentTrial.h"
#include "instruments/Meter.h"

namespace hylden {

/// The Test menu of frmMeter.
class MeterTrial : public InstrumentTrial {
 public:
  using Driver = Meter;

  MeterTrial(Shell& shell, Instruments& instruments);

 private:
  Done Read();

  Meter& meter_;
};

}  // namespace hylden
