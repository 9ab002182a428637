#include "testrun/ManualPanel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "testrun/ManualControls.h"
#include "testrun/ManualMode.h"

namespace hylden {

namespace {

constexpr float kTenthMargin = 1e-3F;  ///< 2.3 is 2.2999999 as a single

bool InRange(const ManualScroll& scroll, int highestStep) {
  return scroll.Step >= 1 && scroll.Step <= highestStep && scroll.OffsetTenths >= kLowestOffsetTenths &&
         scroll.OffsetTenths <= kHighestOffsetTenths;
}

}  // namespace

ManualScroll MoveByKey(ManualScroll now, ArrowKey key, int highestStep) {
  ManualScroll moved = now;
  switch (key) {
    case ArrowKey::Right:
      ++moved.Step;
      break;
    case ArrowKey::Left:
      --moved.Step;
      break;
    case ArrowKey::Up:
      ++moved.OffsetTenths;
      break;
    case ArrowKey::Down:
      --moved.OffsetTenths;
      break;
  }
  return InRange(moved, highestStep) ? moved : now;
}

void ManualPanel::Open(const ManualStart& start) {
  highestStep_ = start.HighestStep;
  scroll_ = {start.Step, static_cast<int>(start.LevelOffset * 10)};
  stepChanged_ = levelChanged_ = rising_ = false;
}

bool ManualPanel::MoveStep(int step) {
  const ManualScroll moved{step, scroll_.OffsetTenths};
  if (moved == scroll_ || !InRange(moved, highestStep_)) return false;
  scroll_ = moved;
  return stepChanged_ = true;
}

bool ManualPanel::MoveOffset(int tenths) {
  const ManualScroll moved{scroll_.Step, tenths};
  if (moved == scroll_ || !InRange(moved, highestStep_)) return false;
  scroll_ = moved;
  return levelChanged_ = true;
}

bool ManualPanel::Key(ArrowKey key) {
  const ManualScroll moved = MoveByKey(scroll_, key, highestStep_);
  return MoveStep(moved.Step) || MoveOffset(moved.OffsetTenths);
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
