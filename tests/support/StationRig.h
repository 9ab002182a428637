#pragma once

#include "support/TestStation.h"

namespace hylden {

/// The scripted station, live.
class StationRig : public TestStation {
 public:
  StationRig() {
    MakeLive([this](double levelDbm) { return MeterReading(levelDbm); });
  }
  virtual ~StationRig() = default;

  double& frequencyMHz = generatorMHz;

 protected:
  /// What the meter shows, dBuV, when the generator sends this level.
  virtual double MeterReading(double levelDbm) = 0;
};

}  // namespace hylden
