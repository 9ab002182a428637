#include "instruments/InstrumentTrial.h"

#include <cmath>
#include <limits>
#include <utility>

#include "instruments/Instruments.h"
#include "platform/FlagRaised.h"
#include "shell/FormEntries.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {

InstrumentTrial::InstrumentTrial(Shell& shell, Instruments& instruments, std::function<Done()> takeDown,
                                 bool endsOnBusFailure)
    : shell_(shell), instruments_(instruments), takeDown_(std::move(takeDown)), endsOnBusFailure_(endsOnBusFailure) {}

InstrumentTrial::~InstrumentTrial() {
  if (claimed_) (void)TakeDown();
}

bool InstrumentTrial::Offers(const Entry& entry) const {
  return !running_ && (up_ || &entry == entries_.data());
}

bool InstrumentTrial::Run(const Entry& entry) {
  if (!entry.Run || !Offers(entry) || !shell_.end.MayStart() || !Claim()) return false;
  const FlagRaised running(running_);
  // A halt that ended a run, or an entry before, is not meant for this one.
  shell_.delay.ClearHalt();
  try {
    const Done done = entry.Run();
    Conclude(done);
    return done.has_value();
  } catch (...) {
    (void)TakeDown();
    throw;
  }
}

void InstrumentTrial::Halt() {
  if (running_) return shell_.delay.RequestHalt();
  RfOff();
  if (instruments_.sigGen.RfIsOn()) End();
}

void InstrumentTrial::Conclude(const Done& done) {
  Failure failure = done ? Failure() : done.error();
  if (!failure.IsSilent()) RfOff();
  // A generator that fails on the bus may be left in any state; a meter can be asked again.
  const bool lost = touched_ && (!up_ || (endsOnBusFailure_ && failure.IsOnBus()));
  if (lost || !up_) (void)TakeDown();
  if ((lost || !failure.IsSilent()) && instruments_.sigGen.RfIsOn())
    failure.Add(Failure(kRfMayBeOn, MessageIcon::Critical));
  Tell(failure);
}

void InstrumentTrial::End() {
  if (running_) return;  // an entry that waits ends itself
  const bool up = up_;
  Failure failure;
  if (const Done down = TakeDown(); !down) failure = down.error();
  if (!up) return;
  if (instruments_.sigGen.RfIsOn()) failure.Add(Failure(kRfMayBeOn, MessageIcon::Critical));
  Tell(failure);
}

bool InstrumentTrial::MayChangeDefinition(bool anotherAddress) {
  if (running_) return false;
  if (!claimed_ && shell_.InstrumentsClaimed()) {
    if (!Claim()) return false;
    Release();
  }
  RfOff();
  if (anotherAddress || instruments_.sigGen.RfIsOn()) End();
  return true;
}

bool InstrumentTrial::GivesWayTo(const RunAtWork& other) {
  if (running_ || !dynamic_cast<const InstrumentTrial*>(&other)) return false;
  End();
  return true;
}

void InstrumentTrial::RfOff() {
  constexpr int kAttempts = 2;  // a box may stand on it for hours
  for (int attempt = 0; attempt < kAttempts && instruments_.sigGen.RfIsOn(); ++attempt) {
    try {
      (void)instruments_.sigGen.SilenceRf();
    } catch (...) {
      // The next attempt, and the end of the trial, try again.
    }
  }
}

Done InstrumentTrial::TakeDown() {
  RfOff();
  up_ = false;
  Done down;
  try {
    if (std::exchange(touched_, false)) down = takeDown_();
  } catch (...) {
    down = Because();
  }
  RfOff();
  const Done local = instruments_.gpib.CloseAll();
  if (down) down = local;
  Release();
  return down;
}

bool InstrumentTrial::Claim() {
  if (!claimed_) claimed_ = shell_.ClaimInstruments(*this);
  return claimed_;
}

void InstrumentTrial::Release() {
  if (std::exchange(claimed_, false)) shell_.ReleaseInstruments();
}

Done InstrumentTrial::BringUp(const std::function<Done()>& init) {
  up_ = false;
  return instruments_.gpib.GpibIfc()
      .and_then([&] {
        touched_ = true;
        return init();
      })
      .map([&] { up_ = true; });
}

Done InstrumentTrial::TakeOffline(const std::function<Done()>& shutdown) {
  return shutdown().map([&] { up_ = touched_ = false; });
}

Result<double> InstrumentTrial::Ask(const std::string& prompt) {
  const char* refusal = nullptr;
  do {
    const auto typed = shell_.dialogs.InputBox(prompt, "Test", entered_[prompt]);
    if (!typed || Trim(*typed).empty()) return Because();
    refusal = kNotANumberText;
    if (IsNumeric(*typed)) {
      const double number = ToDouble(*typed);
      entered_[prompt] = *typed;
      if (std::abs(number) <= double{std::numeric_limits<float>::max()}) return number;
      refusal = kOutOfRangeText;
    }
  } while (
      shell_.dialogs.Show({refusal + ("\r\n" + prompt), {}, MessageIcon::Exclamation, MessageButtons::RetryCancel}) ==
      MessageAnswer::Retry);
  return Because();
}

Done InstrumentTrial::ShowReading(const Result<double>& reading, const char* unit, const std::string& answer) {
  if (!answer.empty()) lastAnswer_ = answer;
  return reading.map([&](double value) {
    shell_.dialogs.Tell("Result = " + Format(value, "##0.0#") + " " + unit + "\r\nReturned String = \"" + answer +
                        "\"");
  });
}

void InstrumentTrial::Tell(const Failure& failure) {
  const std::vector<Message> boxes = failure.Boxes();
  if (boxes.empty()) return;
  Message told = boxes.front();
  for (std::size_t i = 1; i < boxes.size(); ++i) {
    told.text += "\r\n" + boxes[i].text;
    if (boxes[i].icon != MessageIcon::None) told.icon = boxes[i].icon;
  }
  shell_.dialogs.DefaultPointer();
  shell_.dialogs.Show(told);
}

}  // namespace hylden
