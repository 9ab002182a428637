#include "run/FormerRun.h"

#include "text/Pattern.h"

namespace hylden {

Done MayContinue(const JournalHead& then, const JournalHead& now) {
  if (then.Kind != now.Kind)
    return Because("The journal is that of another kind of run: " + std::string(TextOf(then.Kind)) + ".");
  if (then.Notice != now.Notice)
    return Because("The instruments are not those of then: " +
                   (then.Notice.empty() ? "none of them was simulated." : then.Notice));
  return SameParts(then.Parts, now.Parts);
}

std::string ContinuedText(std::size_t step, double frequencyMHz) {
  return "Run continued at step " + std::to_string(step) + " (" + Format(frequencyMHz, "#0.0#####") + " MHz)";
}

}  // namespace hylden
