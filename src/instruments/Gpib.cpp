#include "instruments/Gpib.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>
#include <utility>
#include <vector>

#include "shell/Shell.h"
#include "text/Characters.h"
#include "text/Encoding.h"

namespace hylden {

namespace {

constexpr int kBoard = 0;
constexpr double kOpenWaitSeconds = 2.0;

using AddressList = std::array<std::int16_t, 3>;

AddressList ListOf(int address) {
  return {0, static_cast<std::int16_t>(address), gpib::kNoAddr};
}

std::string Hex(std::int16_t value) {
  char text[8];
  std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(static_cast<std::uint16_t>(value)));
  return text;
}

struct StatusBit {
  unsigned mask;
  const char* mnemonic;
};
constexpr StatusBit kStatusBits[] = {
    {0x8000, " ERR"},  {0x4000, " TIMO"}, {0x2000, " END"},  {0x1000, " SRQI"}, {0x0800, " RQS"},
    {0x0100, " CMPL"}, {0x0080, " LOK"},  {0x0040, " REM"},  {0x0020, " CIC"},  {0x0010, " ATN"},
    {0x0008, " TACS"}, {0x0004, " LACS"}, {0x0002, " DTAS"}, {0x0001, " DCAS"},
};

/// Failures of the board, or of the way to it, rather than of a device: plugged in anew it is not in charge of the bus.
bool LostBoard(int error) {
  return error == gpib::kEdvr || error == gpib::kEcic || error == gpib::kEneb || error == gpib::kEoip;
}

const char* ErrorLine(int code) {
  switch (code) {
    case 0:
      return "iberr = EDVR <DOS Error>";
    case 1:
      return "iberr = ECIC <Not CIC>";
    case 2:
      return "iberr = ENOL <No Listener>";
    case 3:
      return "iberr = EADR <Address Error>";
    case 4:
      return "iberr = EARG <Invalid argument>";
    case 5:
      return "iberr = ESAC <Not Sys Ctrlr>";
    case 6:
      return "iberr = EABO <Op. aborted>";
    case 7:
      return "iberr = ENEB <No GPIB board>";
    case 10:
      return "iberr = EOIP <Async I/O in prg>";
    case 11:
      return "iberr = ECAP <No capability>";
    case 12:
      return "iberr = EFSO <File sys. error>";
    case 14:
      return "iberr = EBUS <Command error>";
    case 15:
      return "iberr = ESTB <Status byte lost>";
    case 16:
      return "iberr = ESRQ <SRQ stuck high>";
    case 20:
      return "iberr = ETAB <Table overflow>";
    default:
      return nullptr;
  }
}

}  // namespace

void Terminator::Derive(std::int32_t endOfString) {
  switch (endOfString) {
    case 0:
      *this = {"", gpib::kStopEnd};
      break;
    case 1:
      *this = {"\r", '\r'};
      break;
    case 2:
      *this = {"\r\n", '\n'};
      break;
    default:
      break;
  }
}

Gpib::Gpib(Shell& shell) : shell_(shell) {}

Gpib::~Gpib() {
  (void)CloseAll();
}

bool Gpib::Carries(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const Utf8Character character = CharacterAt(utf8, at);
    if (character.length == 0 || !ToWindows1252(character.code)) return false;
    at += character.length;
  }
  return true;
}

Done Gpib::GpibIfc() {
  for (auto& [address, device] : devices_) device.SendTimeOuts = device.ReadTimeOuts = 0;
  busTimeOuts_ = 0;
  return interfaceCleared_ ? Done() : ClearInterface();
}

Done Gpib::ClearInterface() {
  RegisterOnce();
  shell_.gpib.SendIFC(kBoard);
  Refresh();
  // Without a time limit the first read could wait for ever.
  if (!Failed()) SetTimeLimit(gpib::kT10s);
  interfaceCleared_ = !Failed();
  if (!interfaceCleared_) return Because(GpibError("Error sending IFC."));
  return {};
}

Result<std::vector<int>> Gpib::Listeners(const std::vector<int>& among) {
  std::vector<std::int16_t> addresses;
  addresses.reserve(among.size() + 1);
  for (const int address : among) addresses.push_back(static_cast<std::int16_t>(address));
  addresses.push_back(gpib::kNoAddr);
  std::vector<std::int16_t> listeners(among.size());
  RegisterOnce();
  shell_.gpib.FindLstn(kBoard, addresses, listeners);
  Refresh();
  if (Failed()) return Because(GpibError("Error finding listeners"));
  const auto found = listeners.begin() + std::clamp<int>(ibcnt, 0, static_cast<int>(listeners.size()));
  return std::vector<int>(listeners.begin(), found);
}

Done Gpib::GpibOpen(int address, const std::string& initCommand, const std::string& name, const std::string& bare) {
  const Result<bool> unseen = Find(address, name);
  if (!unseen) return Because(unseen.error());
  devices_[address].Name = name;
  devices_[address].Remote = true;  // one that timed out may be there all the same
  Impatiently(address, &Device::SendTimeOuts, [&] { shell_.gpib.SetRWLS(kBoard, ListOf(address)); });
  if (Failed()) return Because(GpibError("Error in setting " + name + " to remote mode. "));
  const std::string& first = initCommand.empty() && *unseen ? bare : initCommand;
  if (!first.empty() && !Send(address, first))
    return Because(GpibError((*unseen ? "Error finding " : "Error initializing ") + name));
  shell_.delay.Delay(kOpenWaitSeconds, false);
  return {};
}

Result<bool> Gpib::Find(int address, const std::string& name) {
  std::array<std::int16_t, 2> listeners{};
  Impatiently(address, &Device::SendTimeOuts, [&] { shell_.gpib.FindLstn(kBoard, ListOf(address), listeners); });
  if (!Failed()) return false;
  if (iberr != gpib::kEcap) return Because(GpibError("Error finding " + name));
  if (!std::exchange(lacksLineStatus_, true))
    shell_.log.LogFile("The board can't tell who listens: instruments are found by their first command");
  return true;
}

Done Gpib::GpibClose(int address, const std::string& name) {
  Impatiently(address, &Device::SendTimeOuts, [&] { shell_.gpib.EnableLocal(kBoard, ListOf(address)); });
  if (Failed()) return Because(GpibError("Error closing " + name));
  devices_[address].Remote = false;
  return {};
}

Done Gpib::CloseAll() {
  Done closed;
  for (const auto& [address, device] : devices_) {
    if (!device.Remote) continue;
    try {
      closed = Both(closed, GpibClose(address, device.Name));
    } catch (const std::exception& error) {
      closed = Both(closed, Because(Failure::Report(error, "GpibClose")));
    }
  }
  return closed;
}

template <class Call>
void Gpib::Impatiently(int address, int Device::*timeOuts, Call call) {
  RegisterOnce();
  int& ofDevice = devices_[address].*timeOuts;
  const int before = std::max(ofDevice, busTimeOuts_);
  if (before > 0) shell_.gpib.ibtmo(kBoard, std::max(gpib::kT10s - before, gpib::kT100ms));
  call();
  Refresh();
  if (Failed() && (ibsta & gpib::kTimo) != 0) ++ofDevice, ++busTimeOuts_;
  if (before > 0) shell_.gpib.ibtmo(kBoard, gpib::kT10s);
}

bool Gpib::Send(int address, const std::string& command) {
  Device& device = devices_[address];
  device.LastSendFailed = true;
  device.Remote = !device.Name.empty();  // one that was local is not any more when it is addressed
  Impatiently(address, &Device::SendTimeOuts,
              [&] { shell_.gpib.Send(kBoard, address, EncodeWindows1252(command), gpib::kDabEnd); });
  if (Failed()) return false;
  device.LastSendFailed = false;
  device.ReadTimeOuts = busTimeOuts_ = 0;
  return true;
}

bool Gpib::LastSendFailed(int address) const {
  const auto device = devices_.find(address);
  return device != devices_.end() && device->second.LastSendFailed;
}

Done Gpib::Send(int address, const std::string& command, const std::string& failure) {
  if (!Send(address, command)) return Because(GpibError(failure));
  return {};
}

bool Gpib::Receive(int address, std::string& answer, int termination, std::size_t size) {
  std::vector<char> buffer(size);
  Impatiently(address, &Device::ReadTimeOuts, [&] { shell_.gpib.Receive(kBoard, address, buffer, termination); });
  answer.clear();
  if (Failed()) return false;
  Device& device = devices_[address];
  device.SendTimeOuts = device.ReadTimeOuts = busTimeOuts_ = 0;
  const auto received = std::min(static_cast<std::size_t>(std::max<int>(ibcnt, 0)), size);
  answer = DecodeText({buffer.data(), received});
  const bool ended = (ibsta & gpib::kEnd) != 0 || (received > 0 && buffer[received - 1] == termination);
  if (received == size && !ended) DiscardRest(address, termination);
  return true;
}

/// What did not fit in the buffer would be read as the next answer. The status stays that of the answer.
void Gpib::DiscardRest(int address, int termination) {
  const std::tuple answered(ibsta, iberr, ibcnt, ibcntl);
  SetTimeLimit(gpib::kT30ms);
  (void)ReadAway(address, termination);
  SetTimeLimit(gpib::kT10s);
  std::tie(ibsta, iberr, ibcnt, ibcntl) = answered;
}

void Gpib::Drain(int address) {
  RegisterOnce();
  SetTimeLimit(gpib::kT30ms);
  // One that measures whenever it is asked has always one more.
  constexpr int kMostMessages = 4;
  for (int n = 0; n < kMostMessages && ReadAway(address, gpib::kStopEnd); ++n) continue;
  SetTimeLimit(gpib::kT10s);
}

bool Gpib::ReadAway(int address, int termination) {
  constexpr int kMostPieces = 1000;  // an instrument that never stops is left to the next drain
  std::array<char, 64> piece{};
  for (int n = 0; n < kMostPieces; ++n) {
    shell_.gpib.Receive(kBoard, address, piece, termination);
    Refresh();
    if (Failed()) return false;
    if ((ibsta & gpib::kEnd) != 0 || ibcnt < static_cast<int>(piece.size())) return n > 0 || ibcnt > 0;
  }
  return false;
}

void Gpib::SetTimeLimit(int code) {
  shell_.gpib.ibtmo(kBoard, code);
  Refresh();
}

Failure Gpib::GpibError(const std::string& message) const {
  const std::string advice = shell_.gpib.Advice();
  return Failure::OnBus(message, IbstaText() + IberrText() + IbcntText() + (advice.empty() ? "" : "\r\n" + advice));
}

std::string Gpib::IbstaText() const {
  std::string text = "\r\nibsta = &H" + Hex(ibsta) + " <";
  for (const StatusBit& bit : kStatusBits) {
    if ((static_cast<std::uint16_t>(ibsta) & bit.mask) != 0) text += bit.mnemonic;
  }
  return text + ">";
}

std::string Gpib::IberrText() const {
  if (!Failed()) return std::string("\r\nNo error, iberr = ") + (iberr < 0 ? "" : " ") + std::to_string(iberr);
  const char* line = ErrorLine(iberr);
  return line ? std::string("\r\n") + line : std::string();
}

std::string Gpib::IbcntText() const {
  return "\r\nibcnt = 0x" + Hex(ibcnt);
}

void Gpib::RegisterOnce() {
  if (registered_) return;
  GpibDriver& driver = shell_.gpib;
  const auto quit = [&](const char* text, bool unregister) {
    shell_.dialogs.Tell(text, MessageIcon::Critical);
    if (unregister) driver.UnregisterGpibGlobalsForThread();
    throw ProgramEnd(text);
  };
  switch (driver.RegisterGpibGlobalsForThread(cells_)) {
    case 0:
      break;
    case 1:
      driver.UnregisterGpibGlobalsForThread();
      driver.RegisterGpibGlobalsForThread(cells_);
      break;
    case 2:
      quit("Operating System is not multi-threaded. Quitting the Program!", true);
      break;
    case 3:
      quit("Unable to register GPIB thread globals. Quitting the Program!", true);
      break;
    default:
      quit("Unknown Error for Registering GPIB Globals!!! Quitting the Program!", false);
      break;
  }
  registered_ = true;
}

void Gpib::Refresh() {
  // Conversions to 16 bits keep the low bits, sign included.
  ibsta = static_cast<std::int16_t>(cells_.status);
  iberr = static_cast<std::int16_t>(cells_.error);
  ibcnt = static_cast<std::int16_t>(cells_.longCount);
  ibcntl = cells_.longCount;
  if (Failed() && LostBoard(iberr)) interfaceCleared_ = false;
}

}  // namespace hylden
