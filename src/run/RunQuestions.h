#pragma once

/// The titles of the questions before and after a run, by which they are known on a terminal without an operator.
namespace hylden::question {

inline constexpr const char* kMakeSure = "MAKE SURE!!!";
inline constexpr const char* kSaveRunData = "Save Run Data";
inline constexpr const char* kSaveCalibration = "Save Calibration";
inline constexpr const char* kContinueRun = "Continue Run";

}  // namespace hylden::question
