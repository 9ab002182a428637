#include "instruments/BusPanel.h"

#include <algorithm>
#include <utility>

#include "instruments/Instruments.h"
#include "platform/FlagRaised.h"
#include "platform/GpibStatus.h"
#include "shell/Shell.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

struct EndCode {
  const char* Text;
  int Termination;
};

EndCode CodeOf(LineEnd end) {
  switch (end) {
    case LineEnd::Cr:
      return {"\r", '\r'};
    case LineEnd::Lf:
      return {"\n", '\n'};
    case LineEnd::CrLf:
      return {"\r\n", '\n'};
    case LineEnd::None:
      break;
  }
  return {"", gpib::kStopEnd};
}

constexpr int kLastAddress = 30;

std::string ListText(const std::set<int>& listeners) {
  std::string text;
  for (const int address : listeners) text += (text.empty() ? "Listeners at " : ", ") + std::to_string(address);
  return text.empty() ? "Nobody listens" : text;
}

/// The first read that the trace has from an event on, which takes the answer; null when there is none.
const BusEvent* FirstRead(const BusTrace& trace, std::uint64_t from) {
  for (std::uint64_t number = std::max(from, trace.Begin()); number < trace.End(); ++number)
    if (trace[number].Call == BusCall::Receive) return &trace[number];
  return nullptr;
}

}  // namespace

LineEnd LineEndOf(std::int32_t endOfString) {
  if (endOfString == 1) return LineEnd::Cr;
  return endOfString == 2 ? LineEnd::CrLf : LineEnd::None;
}

BusPanel::~BusPanel() {
  TakeDown();
}

std::vector<BusPanel::Row> BusPanel::Rows(const std::vector<BusUnit>& units) {
  std::vector<Row> rows;
  for (const BusUnit& unit : units) {
    // Telling the way may take a call, for which no run is to wait.
    if (!ways_.contains(unit.Address) && Obstacle().empty()) ways_[unit.Address] = shell_.gpib.Way(unit.Address);
    const auto way = ways_.find(unit.Address);
    const auto status = shell_.gpib.Trace().LastStatus(unit.Address);
    rows.push_back({unit, way == ways_.end() ? std::string() : way->second,
                    status ? GpibStatusInWords(*status) : "not called yet"});
  }
  return rows;
}

std::string BusPanel::Obstacle() const {
  const RunAtWork* const other = shell_.AtWork();
  return other && other != this ? std::string(other->Name()) + " is using the instruments" : std::string();
}

BusPanel::Outcome BusPanel::Do(const std::function<Outcome()>& command) {
  if (running_) return Because("A command is on its way");
  if (const std::string obstacle = Obstacle(); !obstacle.empty()) return Because(obstacle);
  const FlagRaised running(running_);
  ways_.clear();
  try {
    if (!claimed_) claimed_ = shell_.ClaimInstruments(*this);
    if (!claimed_) return Because();
    if (!instruments_.gpib.GpibIfc()) return Failed("The interface can't be cleared");
    return command();
  } catch (...) {
    TakeDown();
    throw;
  }
}

BusPanel::Outcome BusPanel::Failed(const std::string& what) {
  std::string text = what + ": " + GpibStatusInWords(instruments_.gpib.Status()) + ".";
  if (const std::string advice = shell_.gpib.Advice(); !advice.empty()) text += " " + advice;
  if (!instruments_.sigGen.RfIsOn()) return Because(text);
  RfOff();
  return Because(text + " " + (instruments_.sigGen.RfIsOn() ? kRfMayBeOn : "RF was switched off."));
}

BusPanel::Outcome BusPanel::Send(int address, const std::string& command, LineEnd end) {
  return Do([&] { return SendNow(address, command, end); });
}

BusPanel::Outcome BusPanel::Read(int address, LineEnd end) {
  return Do([&] { return ReadNow(address, end); });
}

BusPanel::Outcome BusPanel::Ask(int address, const std::string& command, LineEnd end) {
  return Do(
      [&] { return SendNow(address, command, end).and_then([&](const auto&) { return ReadNow(address, end); }); });
}

BusPanel::Outcome BusPanel::SendNow(int address, const std::string& command, LineEnd end) {
  const std::string bytes = command + CodeOf(end).Text;
  if (bytes.empty()) return Because("There is nothing to send");
  if (!Gpib::Carries(command)) return Because("The bus can't carry every character of this command");
  touched_.insert(address);
  // Before it goes out: it may have arrived although it failed.
  if (IsGenerator(address)) instruments_.sigGen.CommandedByHand();
  if (!instruments_.gpib.Send(address, bytes)) return Failed("Nothing was sent to " + std::to_string(address));
  return "Sent to " + std::to_string(address) + (IsGenerator(address) ? ": RF may be on" : "");
}

BusPanel::Outcome BusPanel::ReadNow(int address, LineEnd end) {
  const BusTrace& trace = shell_.gpib.Trace();
  const std::uint64_t from = trace.End();
  std::string ignored;
  touched_.insert(address);
  if (!instruments_.gpib.Receive(address, ignored, CodeOf(end).Termination, BusTrace::kBytesKept))
    return Failed("No answer from " + std::to_string(address));
  // The bytes as they came, not as text.
  const BusEvent* const read = FirstRead(trace, from);
  return read ? TransferText(*read) : std::string();
}

BusPanel::Outcome BusPanel::ClearInterface() {
  return Do([&]() -> Outcome {
    if (!instruments_.gpib.ClearInterface()) return Failed("The interface can't be cleared");
    return std::string("The interface is cleared");
  });
}

BusPanel::Outcome BusPanel::FindListeners() {
  return Do([&]() -> Outcome {
    // One way that is not there must not hide who listens on the others.
    std::map<std::string, std::vector<int>> byWay;
    for (int address = 0; address <= kLastAddress; ++address) byWay[shell_.gpib.Way(address)].push_back(address);
    std::set<int> found;
    std::size_t looked = 0;
    Outcome failed;
    for (const auto& [way, addresses] : byWay) {
      const auto listeners = instruments_.gpib.Listeners(addresses);
      if (listeners)
        found.insert(listeners->begin(), listeners->end()), ++looked;
      else
        failed = Failed(looked > 0 || byWay.size() > 1 ? "Elsewhere it can't be told" : "It can't be told who listens");
    }
    if (looked == 0) return failed;
    return ListText(found) + (failed ? "" : ". " + failed.error().Boxes().front().text);
  });
}

BusPanel::Outcome BusPanel::Local(int address) {
  return Do([&]() -> Outcome {
    if (!instruments_.gpib.GpibClose(address, {})) return Failed(std::to_string(address) + " is not local");
    touched_.erase(address);
    return std::to_string(address) + " is local";
  });
}

BusPanel::Outcome BusPanel::EndRf() {
  return Do([&]() -> Outcome {
    RfOff();
    if (instruments_.sigGen.RfIsOn()) return Because(kRfMayBeOn);
    return std::string("RF is off");
  });
}

bool BusPanel::RfMayBeOn() const {
  return claimed_ && instruments_.sigGen.RfIsOn();
}

bool BusPanel::IsGenerator(int address) const {
  return instruments_.sigGen.HasDefinition() && instruments_.sigGen.Address() == address;
}

void BusPanel::RfOff() {
  constexpr int kAttempts = 2;
  for (int attempt = 0; attempt < kAttempts && instruments_.sigGen.RfIsOn(); ++attempt) {
    try {
      (void)instruments_.sigGen.SilenceRf();
    } catch (...) {
      // The next attempt, and the end, try again.
    }
  }
}

void BusPanel::TakeDown() {
  if (!claimed_) return;
  RfOff();
  for (const int address : std::exchange(touched_, {})) {
    try {
      (void)instruments_.gpib.GpibClose(address, {});
    } catch (...) {
      // The others are to be left local all the same.
    }
  }
  RfOff();
  claimed_ = false;
  shell_.ReleaseInstruments();
}

void BusPanel::End() {
  if (running_ || !claimed_) return;
  TakeDown();
  if (instruments_.sigGen.RfIsOn()) shell_.Tell(Failure(kRfMayBeOn, MessageIcon::Critical));
}

bool BusPanel::GivesWayTo(const RunAtWork&) {
  if (running_) return false;
  End();
  return true;
}

std::vector<std::string> BusPanel::Lines(std::uint64_t from) const {
  const BusTrace& trace = shell_.gpib.Trace();
  std::vector<std::string> lines;
  for (std::uint64_t number = std::max(from, trace.Begin()); number < trace.End(); ++number)
    lines.push_back(LineOf(trace[number]));
  return lines;
}

Done BusPanel::SaveLines(std::uint64_t from, const std::string& path) const {
  return Trapped("BusPanel.SaveLines", path, [&] { ReplaceFile(path, JoinLines(Lines(from))); });
}

}  // namespace hylden
