#include "testrun/ManualPanel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "testrun/ManualControls.h"
#include "testrun/ManualMode.h"

namespace hylden {

namespace {

constexpr float kTenthMargin = 1e-3F;  ///< 2.3 is 2.2999999 as a single

}  // namespace

void ManualPanel::Open(const ManualStart& start) {
  highestStep_ = start.HighestStep;
  scroll_ = {start.Step, 0};
  stepChanged_ = levelChanged_ = rising_ = false;
}

bool ManualPanel::MoveStep(int step) {
  if (step == scroll_.Step || step < 1 || step > highestStep_) return false;
  scroll_.Step = step;
  return stepChanged_ = true;
}

bool ManualPanel::MoveOffset(int tenths) {
  if (tenths == scroll_.OffsetTenths || tenths < kLowestOffsetTenths || tenths > kHighestOffsetTenths) return false;
  scroll_.OffsetTenths = tenths;
  return levelChanged_ = true;
}

bool ManualPanel::Key(ArrowKey key) {
  switch (key) {
    case ArrowKey::Left:
      return MoveStep(scroll_.Step - 1);
    case ArrowKey::Right:
      return MoveStep(scroll_.Step + 1);
    case ArrowKey::Up:
      return MoveOffset(scroll_.OffsetTenths + 1);
    default:
      return MoveOffset(scroll_.OffsetTenths - 1);
  }
}

void ManualPanel::Tick() {
  if (mode_.IsBusy()) return;
  const bool step = std::exchange(stepChanged_, false);
  const bool level = std::exchange(levelChanged_, false) || OffsetDb() > mode_.LevelOffset();
  if (Apply(step, level))
    rising_ = OffsetDb() > mode_.LevelOffset();
  else
    EndRise();
}

bool ManualPanel::Apply(bool step, bool level) {
  const float offset = std::min(OffsetDb(), mode_.LevelOffset() + mode_.MostRise());
  // The higher of two levels never stands at the step that it was not meant for.
  const bool levelFirst = offset < mode_.LevelOffset();
  if (level && levelFirst && !mode_.manLevOffsetChange(offset)) return false;
  if (step && !mode_.manStepNumChange(scroll_.Step)) return false;
  return !level || levelFirst || mode_.manLevOffsetChange(offset);
}

void ManualPanel::EndRise() {
  levelChanged_ = rising_ = false;
  // Never above what stands: the next tick would raise it.
  scroll_.OffsetTenths = static_cast<int>(std::floor(mode_.LevelOffset() * 10 + kTenthMargin));
}

std::optional<ManualStanding> ManualPanel::Threshold() {
  if (mode_.IsBusy()) return std::nullopt;
  if (!rising_) Tick();
  EndRise();
  return mode_.Standing();
}

void ManualPanel::Leave() {
  if (mode_.IsBusy()) return;
  if (OffsetDb() > mode_.LevelOffset()) EndRise();
  Tick();
}

}  // namespace hylden
