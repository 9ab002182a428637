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
  /// From now on entries wait in memory, with the time at which they came: a run that has RF on must not hang on a log
  /// that lies on a share.
  void Hold() { holding_ = true; }
  /// Writes what waits, in order.
  void Release();

 private:
  void Append(std::string_view entries);

  INISettings& settings_;
  const Clock& clock_;
  bool complained_ = false;
  bool holding_ = false;
  std::string held_;
};

}  // namespace hylden
