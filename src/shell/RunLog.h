#pragma once

#include <string>
#include <string_view>

namespace hylden {

class Clock;
class INISettings;

/// The optional journal runlog.hyl in the working directory, switched by System/LogToFile, which is read at every
/// entry.
class RunLog {
 public:
  RunLog(INISettings& settings, const Clock& clock) : settings_(settings), clock_(clock) {}

  /// Appends date, time and the message when logging is on. A log that can't be written never disturbs a run: one line
  /// on standard error, once.
  void LogFile(std::string_view message);

 private:
  INISettings& settings_;
  const Clock& clock_;
  bool complained_ = false;
};

}  // namespace hylden
