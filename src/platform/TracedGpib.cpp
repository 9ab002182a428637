#include "platform/TracedGpib.h"

#include <algorithm>
#include <utility>

#include "platform/Clock.h"

namespace hylden {

namespace {

constexpr std::size_t kChatterKept = 4096;

std::span<const std::int16_t> UpToTerminator(std::span<const std::int16_t> list) {
  return list.first(static_cast<std::size_t>(std::ranges::find(list, gpib::kNoAddr) - list.begin()));
}

/// "7 13 18"; three and more in a row are "0..30".
std::string ListText(std::span<const std::int16_t> addresses) {
  std::string text;
  for (std::size_t i = 0; i < addresses.size();) {
    std::size_t last = i;
    while (last + 1 < addresses.size() && addresses[last + 1] == addresses[last] + 1) ++last;
    const bool isRange = last - i >= 2;
    text += (text.empty() ? "" : " ") + std::to_string(addresses[i]);
    if (isRange) text += ".." + std::to_string(addresses[last]);
    i = isRange ? last + 1 : i + 1;
  }
  return text;
}

/// The device that a list means: its only address, or the one behind the 0 at its head.
int DeviceIn(std::span<const std::int16_t> addresses) {
  const bool isOne = addresses.size() == 1 || (addresses.size() == 2 && addresses.front() == 0);
  return isOne ? addresses.back() : BusEvent::kNoAddress;
}

}  // namespace

BusEvent TracedGpib::Begin(BusCall call) const {
  BusEvent event;
  event.Call = call;
  event.SecondsSinceMidnight = clock_.SecondsSinceMidnight();
  event.DurationMs = clock_.TickMs();  // until it is finished: the tick of its beginning
  return event;
}

void TracedGpib::Finish(BusEvent event) {
  event.DurationMs = clock_.TickMs() - event.DurationMs;
  const bool leavesStatus = event.Call != BusCall::Register && event.Call != BusCall::Unregister;
  if (cells_ && leavesStatus) event.Status = *cells_;
  const bool failed = event.Failed();
  trace_.Add(std::move(event));
  const std::string chatter = inner_.TakeChatter();
  if (!chatter.empty()) {
    AddNote(chatter);
    chatter_ += chatter;
    if (chatter_.size() > kChatterKept) chatter_.erase(0, chatter_.size() - kChatterKept);
  }
  if (!failed) return;
  std::string advice = inner_.Advice();
  if (advice.empty() || advice == lastAdvice_) return;
  AddNote(advice);
  lastAdvice_ = std::move(advice);
}

void TracedGpib::AddNote(const std::string& words) {
  BusEvent note = Begin(BusCall::Note);
  note.DurationMs = 0;
  for (const char c : words.substr(0, BusTrace::kBytesKept)) note.Bytes += c == '\r' || c == '\n' ? ' ' : c;
  note.Bytes.erase(note.Bytes.find_last_not_of(' ') + 1);
  trace_.Add(std::move(note));
}

std::string TracedGpib::TakeChatter() {
  return std::exchange(chatter_, {}) + inner_.TakeChatter();
}

int TracedGpib::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  BusEvent event = Begin(BusCall::Register);
  cells_ = &cells;
  event.Argument = inner_.RegisterGpibGlobalsForThread(cells);
  const int result = event.Argument;
  Finish(std::move(event));
  return result;
}

int TracedGpib::UnregisterGpibGlobalsForThread() {
  BusEvent event = Begin(BusCall::Unregister);
  cells_ = nullptr;
  event.Argument = inner_.UnregisterGpibGlobalsForThread();
  const int result = event.Argument;
  Finish(std::move(event));
  return result;
}

void TracedGpib::SendIFC(int board) {
  BusEvent event = Begin(BusCall::Clear);
  inner_.SendIFC(board);
  Finish(std::move(event));
}

void TracedGpib::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  BusEvent event = Begin(BusCall::Find);
  inner_.FindLstn(board, addresses, results);
  const auto list = UpToTerminator(addresses);
  event.Address = DeviceIn(list);
  event.Bytes = ListText(list);
  const auto found = cells_ ? static_cast<std::size_t>(std::max(cells_->longCount, 0)) : 0;
  event.Found = ListText(results.first(std::min(found, results.size())));
  Finish(std::move(event));
}

template <class Call>
void TracedGpib::TraceList(BusCall what, std::span<const std::int16_t> addresses, Call call) {
  BusEvent event = Begin(what);
  call();
  const auto list = UpToTerminator(addresses);
  event.Address = DeviceIn(list);
  event.Bytes = ListText(list);
  Finish(std::move(event));
}

void TracedGpib::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  TraceList(BusCall::Remote, addresses, [&] { inner_.SetRWLS(board, addresses); });
}

void TracedGpib::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  TraceList(BusCall::Local, addresses, [&] { inner_.EnableLocal(board, addresses); });
}

void TracedGpib::Send(int board, int address, std::string_view bytes, int eotMode) {
  BusEvent event = Begin(BusCall::Send);
  inner_.Send(board, address, bytes, eotMode);
  event.Address = address;
  event.Bytes = bytes.substr(0, BusTrace::kBytesKept);
  event.Count = bytes.size();
  event.Argument = eotMode;
  Finish(std::move(event));
}

void TracedGpib::Receive(int board, int address, std::span<char> buffer, int termination) {
  BusEvent event = Begin(BusCall::Receive);
  inner_.Receive(board, address, buffer, termination);
  event.Address = address;
  event.Argument = termination;
  // A read that failed may have brought a part.
  const auto told = cells_ ? static_cast<std::size_t>(std::max(cells_->longCount, 0)) : 0;
  event.Count = std::min(told, buffer.size());
  event.Bytes.assign(buffer.data(), std::min(event.Count, BusTrace::kBytesKept));
  Finish(std::move(event));
}

void TracedGpib::ibtmo(int board, int code) {
  BusEvent event = Begin(BusCall::TimeLimit);
  inner_.ibtmo(board, code);
  event.Argument = code;
  Finish(std::move(event));
}

}  // namespace hylden
