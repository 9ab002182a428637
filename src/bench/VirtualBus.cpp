#include "bench/VirtualBus.h"

#include <algorithm>
#include <utility>

#include "platform/GpibTimeLimit.h"

namespace hylden {
namespace {

constexpr int kEarg = 4, kEneb = 7, kEtab = 20;
constexpr std::int64_t kCommandMs = 2;
constexpr std::size_t kUnknownKept = 100;

}  // namespace

void VirtualBus::Clear() {
  devices_ = {};
}

void VirtualBus::Attach(int address, VirtualInstrument& instrument) {
  if (Device* device = At(address)) device->Instruments.push_back(&instrument);
}

bool VirtualBus::Listens(int address) const {
  const Device* const device = At(address);
  return device && !device->Instruments.empty() && !device->Absent;
}

bool VirtualBus::IsRemote(int address) const {
  const Device* const device = At(address);
  return device && device->Remote;
}

std::string VirtualBus::TerminatorOf(int address) const {
  const Device* const device = At(address);
  return device && !device->Instruments.empty() ? device->Instruments.front()->Terminator() : std::string();
}

std::optional<std::int64_t> VirtualBus::AnswerReadyMs(int address) const {
  const Device* const device = At(address);
  if (!device || device->Answers.empty()) return std::nullopt;
  return device->Answers.front().ReadyMs;
}

void VirtualBus::ClearDevice(int address) {
  if (Device* const device = At(address)) device->Answers.clear();
}

const VirtualBus::Device* VirtualBus::At(int address) const {
  if (address < 0 || address >= static_cast<int>(devices_.size())) return nullptr;
  return &devices_[static_cast<std::size_t>(address)];
}

VirtualBus::Device* VirtualBus::At(int address) {
  return const_cast<Device*>(std::as_const(*this).At(address));
}

int VirtualBus::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  if (cells_ && cells_ != &cells) return 1;
  cells_ = &cells;
  return 0;
}

int VirtualBus::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return 0;
}

void VirtualBus::Succeed(std::size_t count, int extraStatus) {
  if (!cells_) return;
  const auto bytes = static_cast<std::int32_t>(count);
  *cells_ = {gpib::kCmpl | gpib::kCic | extraStatus, 0, bytes, bytes};
}

void VirtualBus::Fail(int error, int extraStatus) {
  if (cells_) *cells_ = {gpib::kErr | gpib::kCmpl | gpib::kCic | extraStatus, error, 0, 0};
}

void VirtualBus::Pass(std::int64_t milliseconds) {
  if (passTime) passTime(milliseconds);
}

/// Counts one more call or answer of the role; true when it is the one the fault waits for.
bool VirtualBus::Due(PendingFault& pending, const Device* device, BenchRole role) {
  const BenchRole who = pending.Fault.Who;
  const auto is = [who](const VirtualInstrument* instrument) { return instrument->Role() == who; };
  const bool meant = who == BenchRole::Bus || who == role ||
                     (device && role == BenchRole::Bus && std::ranges::any_of(device->Instruments, is));
  return meant && pending.Left > 0 && --pending.Left == 0;
}

bool VirtualBus::Refused(int board, Device* device) {
  if (board != 0) return Fail(kEneb), true;
  bool fails = false;
  for (PendingFault& pending : faults_) {
    const FaultKind kind = pending.Fault.Kind;
    if (kind != FaultKind::Fail && kind != FaultKind::Absent && kind != FaultKind::Protection) continue;
    if (!Due(pending, device, BenchRole::Bus)) continue;
    if (kind == FaultKind::Fail) fails = true;
    if (kind == FaultKind::Absent && device) device->Absent = true;
    if (kind == FaultKind::Protection && protectAmplifier) protectAmplifier();
  }
  if (!fails) return false;
  Pass(timeLimitMs_);
  Fail(gpib::kEabo, gpib::kTimo);
  return true;
}

void VirtualBus::SendIFC(int board) {
  if (!Refused(board, nullptr)) Succeed(0);
}

void VirtualBus::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  if (Refused(board, nullptr)) return;
  std::size_t found = 0;
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr) break;
    const Device* device = At(address);
    if (!device) return Fail(kEarg);
    if (device->Instruments.empty() || device->Absent) continue;
    if (found == results.size()) return Fail(kEtab);
    results[found++] = address;
  }
  Succeed(found);
}

void VirtualBus::SetRemote(int board, std::span<const std::int16_t> addresses, bool remote) {
  if (Refused(board, nullptr)) return;
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr) break;
    Device* device = At(address);
    if (!device) return Fail(kEarg);
    device->Remote = remote;
  }
  Succeed(0);
}

void VirtualBus::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  SetRemote(board, addresses, true);
}

void VirtualBus::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  SetRemote(board, addresses, false);
}

void VirtualBus::Send(int board, int address, std::string_view bytes, int) {
  Device* device = At(address);
  if (!device) return Fail(kEarg);
  if (Refused(board, device)) return;
  if (device->Instruments.empty() || device->Absent) return Fail(gpib::kEnol);
  Pass(kCommandMs);
  bool understood = false;
  for (VirtualInstrument* instrument : device->Instruments) {
    Heard heard = instrument->Hear(bytes);
    understood = understood || heard.Understood;
    if (heard.Answer) Queue(*device, instrument->Role(), std::move(*heard.Answer));
  }
  if (!understood && ++unknownCount_ <= static_cast<int>(kUnknownKept))
    unknown_.push_back({address, std::string(bytes)});
  Succeed(bytes.size());
}

void VirtualBus::Queue(Device& device, BenchRole role, std::string text) {
  std::erase_if(device.Answers, [](const Answer& answer) { return !answer.Late; });
  Answer answer{std::move(text), clock_.TickMs()};
  for (PendingFault& pending : faults_) {
    const FaultKind kind = pending.Fault.Kind;
    if (kind != FaultKind::Late && kind != FaultKind::Garbage && kind != FaultKind::Silent) continue;
    if (!Due(pending, nullptr, role)) continue;
    if (kind == FaultKind::Silent) return;
    if (kind == FaultKind::Garbage) answer.Text = "#*?!\r\n";
    if (kind == FaultKind::Late) answer.ReadyMs += pending.Fault.LateMs, answer.Late = true;
  }
  device.Answers.push_back(std::move(answer));
}

void VirtualBus::Receive(int board, int address, std::span<char> buffer, int termination) {
  Device* device = At(address);
  if (!device) return Fail(kEarg);
  if (Refused(board, device)) return;
  if (device->Absent) device->Answers.clear();
  for (VirtualInstrument* instrument : device->Instruments) {
    if (!device->Answers.empty() || device->Absent) break;
    if (auto answer = instrument->Talk()) Queue(*device, instrument->Role(), std::move(*answer));
  }
  const std::int64_t waitMs =
      device->Answers.empty() ? gpib::kForeverMs : device->Answers.front().ReadyMs - clock_.TickMs();
  if (waitMs > timeLimitMs_ || waitMs == gpib::kForeverMs) {
    Pass(timeLimitMs_);
    return Fail(gpib::kEabo, gpib::kTimo);
  }
  Pass(std::max<std::int64_t>(waitMs, 0) + kCommandMs);
  Deliver(*device, buffer, termination);
}

/// Up to the end of the message, the terminating byte, or the end of the buffer; the rest waits for the next read.
void VirtualBus::Deliver(Device& device, std::span<char> buffer, int termination) {
  std::string& text = device.Answers.front().Text;
  std::size_t end = text.size();
  if (termination != gpib::kStopEnd) {
    const auto terminator = text.find(static_cast<char>(termination));
    if (terminator != std::string::npos) end = terminator + 1;
  }
  const std::size_t count = std::min(end, buffer.size());
  std::copy_n(text.begin(), count, buffer.begin());
  text.erase(0, count);
  if (text.empty()) device.Answers.pop_front();
  Succeed(count, count == end ? gpib::kEnd : 0);
}

void VirtualBus::ibtmo(int board, int code) {
  if (board != 0) return Fail(kEneb);
  timeLimitMs_ = gpib::TimeLimitMs(code);
  Succeed(0);
}

}  // namespace hylden
