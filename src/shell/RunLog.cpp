#include "shell/RunLog.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include "platform/Clock.h"
#include "shell/INISettings.h"

namespace hylden {

namespace {

constexpr const char* kLogFile = "runlog.hyl";

/// "mm/dd/yy hh:mm:ss"
std::string TimeStamp(const LocalTime& time) {
  char text[80];
  std::snprintf(text, sizeof text, "%02d/%02d/%02d %02d:%02d:%02d", time.month, time.day, time.year % 100, time.hour,
                time.minute, time.second);
  return text;
}

/// Opening it would wait for a reader.
bool IsPipe() {
  std::error_code error;
  return std::filesystem::is_fifo(kLogFile, error);
}

}  // namespace

void RunLog::LogFile(std::string_view message) {
  held_.append(TimeStamp(clock_.Now())).append(" - ").append(message).append("\r\n");
  if (!holding_) Release();
}

void RunLog::Release() {
  holding_ = false;
  const std::string entries = std::exchange(held_, {});
  if (!entries.empty() && settings_.GetLogToFile() > 0) Append(entries);
}

void RunLog::Append(std::string_view entries) {
  if (!IsPipe()) {
    std::ofstream file(kLogFile, std::ios::app | std::ios::binary);
    file << entries;
    file.close();
    if (file) return;
  }
  if (!complained_) std::cerr << "run log " << kLogFile << ": it can't be written\n";
  complained_ = true;
}

}  // namespace hylden
