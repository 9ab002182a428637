#pragma once

#include <cstdint>
#include <functional>

#include "bench/BenchConfig.h"
#include "bench/ReadingNoise.h"
#include "bench/RfPath.h"
#include "platform/Clock.h"

namespace hylden {

/// What the physics is at one moment. Levels are kNoValue without RF, or where the generator does not feed the
/// amplifier.
struct BenchState {
  std::int64_t TickMs = 0;
  GeneratorState Generator;
  hylden::Cabling Cabling;
  /// Level at the coupling device as the level calibration computes it (port + cable loss + coupling factor), dBuV: of
  /// the carrier, and of the peak of its modulation.
  double TestLevelDbuv = kNoValue, PeakTestLevelDbuv = kNoValue;
  double InducedDbua = kNoValue;                        ///< carrier
  double ForwardDbm = kNoValue, ReverseDbm = kNoValue;  ///< average power at the directional coupler
  bool ProductDisturbed = false;  ///< the peak test level has reached the threshold of a product that is connected
};

/// The one world that the virtual instruments share: the generator drives it, the meters read it.
class RfWorld {
 public:
  /// Clock and configuration must outlive the world.
  RfWorld(const Clock& clock, const BenchConfig& config);

  const GeneratorState& Generator() const { return state_.Generator; }
  const hylden::Cabling& Cabling() const { return state_.Cabling; }
  const BenchState& State() const { return state_; }
  /// Both do nothing when nothing changes.
  void SetGenerator(const GeneratorState& generator);
  void SetCabling(const hylden::Cabling& cabling);

  std::int64_t Now() const { return clock_.TickMs(); }
  /// What instruments see at a tick (not after the next change): until the generator has settled, what was before.
  struct View {
    PathLevels Levels;
    double FreqMHz = 0;
  };
  const View& SeenAt(std::int64_t tickMs) const;
  double Noise() { return noise_.Next(); }
  const BenchConfig& Config() const { return config_; }
  const RfPath& Path() const { return path_; }

  /// Called before a change: whoever measures takes what was up to now.
  std::function<void()> beforeChange;
  /// Called after a change.
  std::function<void(const BenchState&)> afterChange;

 private:
  void Change(const GeneratorState& generator, const hylden::Cabling& cabling);

  const Clock& clock_;
  const BenchConfig& config_;
  RfPath path_;
  ReadingNoise noise_;
  PathFactors factors_;
  BenchState state_;
  View now_, before_;
  std::int64_t settledMs_ = 0;
};

}  // namespace hylden
