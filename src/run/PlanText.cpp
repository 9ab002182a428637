#include "run/PlanText.h"

#include "run/RunDisplay.h"
#include "text/Duration.h"

namespace hylden {

std::string PlanText(const RunPlan& plan, bool waits) {
  std::string text = std::to_string(plan.Steps) + (plan.Steps == 1 ? " frequency" : " frequencies");
  if (plan.EstimatedMinutes > 0) text += ", about " + DurationText(plan.EstimatedMinutes * 60);
  if (waits) text += "; a dwell of 0 waits for you";
  return text;
}

}  // namespace hylden
