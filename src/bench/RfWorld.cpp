#include "bench/RfWorld.h"

namespace hylden {

RfWorld::RfWorld(const Clock& clock, const BenchConfig& config)
    : clock_(clock), config_(config), path_(config), noise_(config.NoiseDb, static_cast<std::uint64_t>(config.Seed)) {
  state_.Cabling.Meter = config.Meter;
  state_.Cabling.Protection = config.Protection;
  factors_ = path_.At(0, state_.Cabling);
}

void RfWorld::SetGenerator(const GeneratorState& generator) {
  if (generator != state_.Generator) Change(generator, state_.Cabling);
}

void RfWorld::SetCabling(const hylden::Cabling& cabling) {
  if (cabling != state_.Cabling) Change(state_.Generator, cabling);
}

const RfWorld::View& RfWorld::SeenAt(std::int64_t tickMs) const {
  return tickMs < settledMs_ ? before_ : now_;
}

void RfWorld::Change(const GeneratorState& generator, const hylden::Cabling& cabling) {
  if (beforeChange) beforeChange();
  const std::int64_t now = Now();
  if (now >= settledMs_) before_ = now_;
  settledMs_ = now + static_cast<std::int64_t>(config_.GeneratorSettlingMs);

  if (generator.FreqMHz != state_.Generator.FreqMHz || cabling != state_.Cabling)
    factors_ = path_.At(generator.FreqMHz, cabling);
  now_ = {LevelsOf(factors_, generator), generator.FreqMHz};

  const PathLevels& levels = now_.Levels;
  state_ = {now,
            generator,
            cabling,
            levels.TestLevelDbuv.Carrier,
            levels.TestLevelDbuv.Peak,
            levels.InducedDbua,
            levels.ForwardDbm.Average,
            levels.ReverseDbm,
            levels.TestLevelDbuv.Present() && levels.TestLevelDbuv.Peak >= factors_.DisturbedDbuv};
  if (afterChange) afterChange(state_);
}

}  // namespace hylden
