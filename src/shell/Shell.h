#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/EventLoop.h"
#include "platform/GpibDriver.h"
#include "platform/Platform.h"
#include "platform/Printer.h"
#include "platform/Speaker.h"
#include "shell/BDelay.h"
#include "shell/INISettings.h"
#include "shell/RunLog.h"
#include "text/RuntimeError.h"

namespace hylden {

/// What every part of the program shares: the machine, the settings, the run log, the waits.
class Shell {
 public:
  Shell(const Platform& platform, const std::string& programDirectory);

  Dialogs& dialogs;
  Clock& clock;
  EventLoop& events;
  Speaker& speaker;
  Printer& printer;
  GpibDriver& gpib;
  INISettings settings;
  RunLog log;
  BDelay delay;

  /// Gives a run the instruments until it releases them. While it has them, the station is made safe before the
  /// operator is told of an instrument's failure: the box may stand for hours. What fails on the way to safety is told
  /// first. @return false when another run has them
  bool ClaimInstruments(std::function<void()> makeSafe);
  void ReleaseInstruments() { makeSafe_ = nullptr; }
  /// A run has the instruments.
  bool InstrumentsClaimed() const { return makeSafe_ != nullptr; }

  /// Tells of an instrument's failure.
  void TellFailure(const std::string& text, MessageIcon icon = MessageIcon::None);

  /// The standard report of a trapped failure: critical icon, title "Error", "Error # " + number, CR, description, CR,
  /// context, CR and, where a file is involved, its path.
  void ReportError(const RuntimeError& error, std::string_view context, std::string_view path = {});
  /// The same for any exception: one that carries no number is reported as number 51, "Internal error".
  void ReportError(const std::exception& error, std::string_view context, std::string_view path = {});

 private:
  std::function<void()> makeSafe_;  ///< there while a run has the instruments
  bool makingSafe_ = false;
};

}  // namespace hylden
