#include "run/FormerRun.h"

#include "run/RunQuestions.h"
#include "text/Pattern.h"

namespace hylden {

namespace {

/// "step 6 (0.1577 MHz)"
std::string StepText(std::size_t step, double frequencyMHz) {
  return "step " + std::to_string(step) + " (" + Format(frequencyMHz, "#0.0#####") + " MHz)";
}

}  // namespace

Done MayContinue(const JournalHead& then, const JournalHead& now) {
  if (then.Kind != now.Kind)
    return Because("The journal is that of another kind of run: " + std::string(TextOf(then.Kind)) + ".");
  if (then.Notice != now.Notice)
    return Because("The instruments are not those of then: " +
                   (then.Notice.empty() ? "none of them was simulated." : then.Notice));
  return SameParts(then.Parts, now.Parts);
}

std::string ContinuedText(std::size_t step, double frequencyMHz) {
  return "Run continued at " + StepText(step, frequencyMHz);
}

std::string ContinuesText(std::size_t step, double frequencyMHz) {
  return "Continues at " + StepText(step, frequencyMHz);
}

std::string NotContinuedText(const Failure& why) {
  return "The run can't be continued, and its journal stays:\r\n" + why.Boxes().front().text;
}

MessageAnswer AskToContinue(Dialogs& dialogs, std::size_t step, double frequencyMHz) {
  return dialogs.Show({"The last run ended early. Continue it at " + StepText(step, frequencyMHz) +
                           "?\r\nYes: its rows stay, and those to come follow them. No: the run begins afresh.",
                       question::kContinueRun, MessageIcon::Question, MessageButtons::YesNoCancel});
}

}  // namespace hylden
