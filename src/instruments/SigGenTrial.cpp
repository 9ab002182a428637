#include "instruments/SigGenTrial.h"

#include "instruments/Instruments.h"

namespace hylden {
namespace {

constexpr const char* kModulationFrequency = "Enter Modulation Frequency in ";

/// Minimum, RF off, local; tried twice.
Done ShutDown(SigGen& sigGen) {
  const Done down = sigGen.ShutdownSigGen();
  return down ? down : sigGen.ShutdownSigGen();
}

}  // namespace

SigGenTrial::SigGenTrial(Shell& shell, Instruments& instruments)
    : InstrumentTrial(
          shell, instruments, [&instruments] { return ShutDown(instruments.sigGen); }, true),
      sigGen_(instruments.sigGen) {
  Offer("mnuTestInit", [this] { return Init(); });
  Offer("mnuTestSetFreqLev", [this] { return SetFreqLevel(); });
  Offer("mnuTestEnableAm", [this] { return EnableAm(); });
  Offer("mnuTestEnableFm", [this] { return EnableFm(); });
  Offer("mnuTestEnablePulse", [this] { return EnablePulse(); });
  Offer("mnuTestModOff", [this] { return sigGen_.ModOff(); });
  Offer("mnuTestRfOn", [this] { return sigGen_.RfOn(); });
  // One without the command goes to its minimum at once: an operator who ends RF means it.
  Offer("mnuTestRfOff", [this] { return sigGen_.SilenceRf(); });
  Offer("mnuTestLocal", [this] { return TakeOffline([this] { return sigGen_.ShutdownSigGen(); }); });
}

Result<SigGenTrial::Pair> SigGenTrial::AskPair(const std::string& first, const std::string& second) {
  return Ask(first).and_then([&](double number) -> Result<Pair> {
    return Ask(second).map([number](double other) { return Pair{number, static_cast<float>(other)}; });
  });
}

Result<SigGenTrial::Pair> SigGenTrial::AskFreqAndLevel() {
  const SigGenDefinition& d = sigGen_.Definition();
  return AskPair("Enter Frequency in " + d.FreqSetSuffix, "Enter Level in " + d.LevSetSuffix);
}

Done SigGenTrial::Init() {
  return AskFreqAndLevel().and_then(
      [this](Pair asked) { return BringUp([&] { return sigGen_.InitSigGen(asked.First, asked.Second); }); });
}

Done SigGenTrial::SetFreqLevel() {
  return AskFreqAndLevel().and_then([this](Pair asked) { return sigGen_.SetFreqLevel(asked.First, asked.Second); });
}

Done SigGenTrial::EnableAm() {
  const SigGenDefinition& d = sigGen_.Definition();
  const auto asked = AskPair(kModulationFrequency + d.AmFreqSuffix, "Enter Modulation Depth in " + d.AmDepthSuffix);
  if (!asked) return Because(asked.error());
  return sigGen_.ModOff()
      .and_then([&] { return sigGen_.SetAM(static_cast<float>(asked->First), asked->Second, false); })
      .and_then([&] { return sigGen_.AmOn(); });
}

Done SigGenTrial::EnableFm() {
  const SigGenDefinition& d = sigGen_.Definition();
  const auto asked = AskPair(kModulationFrequency + d.FmFreqSuffix, "Enter Modulation Deviation in " + d.FmDevSuffix);
  if (!asked) return Because(asked.error());
  return sigGen_.ModOff()
      .and_then([&] { return sigGen_.SetFM(static_cast<float>(asked->First), asked->Second); })
      .and_then([&] { return sigGen_.FmOn(); });
}

Done SigGenTrial::EnablePulse() {
  const SigGenDefinition& d = sigGen_.Definition();
  const auto asked =
      AskPair("Enter Pulse Frequency in " + d.PulseFreqSuffix, "Enter Pulse Width in " + d.PulseWidthSuffix);
  if (!asked) return Because(asked.error());
  return sigGen_.ModOff()
      .and_then([&] { return sigGen_.SetPulse(static_cast<float>(asked->First), asked->Second); })
      .and_then([&] { return sigGen_.PulseOn(); });
}

}  // namespace hylden
