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
#include "shell/EndOfProgram.h"
#include "shell/INISettings.h"
#include "shell/RunLog.h"
#include "text/RuntimeError.h"

namespace hylden {

/// What every part of the program shares: the machine, the settings, the run log, the waits.
class Shell {
 public:
  Shell(const Platform& platform, const Directories& directories);

  Dialogs& dialogs;
  Clock& clock;
  EventLoop& events;
  Speaker& speaker;
  Printer& printer;
  GpibDriver& gpib;
  INISettings settings;
  RunLog log;
  BDelay delay;
  EndOfProgram end;

  /// What the run log has to say of every run: that no instrument is driven. Empty where instruments are.
  std::string runNotice;

  /// Gives a run the instruments until it releases them. While it has them, the station is made safe before the
  /// operator is told of an instrument's failure: the box may stand for hours.
  /// @param makeSafe  tells nobody of what fails in it
  /// @return false when another run has them
  bool ClaimInstruments(std::function<void()> makeSafe);
  void ReleaseInstruments();
  /// A run has the instruments.
  bool InstrumentsClaimed() const { return makeSafe_ != nullptr; }

  /// Tells of an instrument's failure.
  void TellFailure(const std::string& text, MessageIcon icon = MessageIcon::None);
  /// A bus call failed. Outside a run this is shown at once. In a run the station is made safe at once, and the text
  /// waits for ShowFailure; once one was shown, what else fails on the way to the end is not told.
  /// @param status  the call's status words, as lines
  void ReportBusFailure(const std::string& text, const std::string& status);
  /// Shows how a run fails: what a bus call left to be told, if anything, and the run's own text, if any, in one box.
  void ShowFailure(const std::string& text = {}, MessageIcon icon = MessageIcon::None);
  /// The operator goes on after a failure was shown: the next one is told again.
  void ForgetFailure() { failureShown_ = false; }

  /// The standard report of a trapped failure: critical icon, title "Error", "Error # " + number, CR, description, CR,
  /// context, CR and, where a file is involved, its path. While a run has the instruments, the station is made safe
  /// first, as far as that can be done.
  void ReportError(const RuntimeError& error, std::string_view context, std::string_view path = {});
  /// The same for any exception: one that carries no number is reported as number 51, "Internal error".
  void ReportError(const std::exception& error, std::string_view context, std::string_view path = {});
  /// The same for a failure that nobody foresaw: a run that is on is halted first, with RF off.
  void ReportUnforeseen(const std::exception& error, std::string_view context);

 private:
  void MakeSafe();

  std::function<void()> makeSafe_;  ///< there while a run has the instruments
  bool makingSafe_ = false;
  std::string busFailure_;  ///< of the run, not shown yet
  bool failureShown_ = false;
};

}  // namespace hylden
