#include "instruments/PMTrial.h"

#include "instruments/Instruments.h"

namespace hylden {
namespace {

constexpr int kChannel = 1;

}  // namespace

PMTrial::PMTrial(Shell& shell, Instruments& instruments)
    : InstrumentTrial(
          shell, instruments, [&instruments] { return instruments.pm.PwrMtrShutdown(); }, false),
      pm_(instruments.pm) {
  Offer("mnuTestInit", [this] { return BringUp([this] { return pm_.InitPwrMtr(); }); });
  Offer("mnuTestSetFreq", [this] {
    return Ask("Enter Frequency in " + pm_.Definition().FreqSetSuffix).and_then([this](double frequency) {
      return pm_.PwrMtrSetFreq(frequency);
    });
  });
  Offer("mnuTestTrigger", [this] { return pm_.PwrMtrTrigger(kChannel); });
  Offer("mnuTestRead", [this] { return Read(); });
  Offer("mnuTestParse");
  Offer("mnuTestShutdown", [this] { return TakeOffline([this] { return pm_.PwrMtrShutdown(); }); });
}

Done PMTrial::Read() {
  const Result<double> power = pm_.ReadPower(kChannel);
  return ShowReading(power, "dBm", pm_.LastAnswer());
}

}  // namespace hylden
