#include "instruments/MeterTrial.h"

#include "instruments/Instruments.h"

namespace hylden {

MeterTrial::MeterTrial(Shell& shell, Instruments& instruments)
    : InstrumentTrial(
          shell, instruments, [&instruments] { return instruments.meter.MeterShutdown(); }, false),
      meter_(instruments.meter) {
  Offer("mnuTestInit", [this] { return BringUp([this] { return meter_.InitMeter(); }); });
  Offer("mnuTestSetLevel", [this] {
    return Ask("Enter Level in dBuv").and_then([this](double level) { return meter_.MeterSetLevel(level); });
  });
  Offer("mnuTestSetFreq", [this] {
    return Ask("Enter Frequency in " + meter_.Definition().FreqSetSuffix).and_then([this](double frequency) {
      return meter_.MeterSetFreq(frequency);
    });
  });
  Offer("mnuTestTrigger", [this] { return meter_.MeterTrigger(); });
  Offer("mnuTestRead", [this] { return Read(); });
  Offer("mnuTestParse");
  Offer("mnuTestShutdown", [this] { return TakeOffline([this] { return meter_.MeterShutdown(); }); });
}

Done MeterTrial::Read() {
  const Result<double> level = meter_.MeterRead(ReadMode::Single);
  return ShowReading(level, "dBuv", meter_.LastAnswer());
}

}  // namespace hylden
