#pragma once

namespace hylden {

/// How the last run ended.
enum class RunOutcome {
  NotRun,      ///< none has been started
  Finished,    ///< every planned step was run
  EndedEarly,  ///< it failed, was halted, or is still going on
};

}  // namespace hylden
