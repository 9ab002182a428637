#include "platform/GpibStatus.h"

#include <algorithm>
#include <iterator>

namespace hylden {

namespace {

struct ErrorName {
  int Code;
  const char *Mnemonic, *Words;
};

constexpr ErrorName kErrors[] = {
    {gpib::kEdvr, "EDVR", "the driver, or the way to the device, failed"},
    {gpib::kEcic, "ECIC", "the board is not in charge of the bus"},
    {gpib::kEnol, "ENOL", "nobody listens there"},
    {3, "EADR", "the board is addressed wrongly"},
    {4, "EARG", "the call has an argument that the driver refuses"},
    {5, "ESAC", "the board is not the system controller"},
    {gpib::kEabo, "EABO", "the transfer was broken off"},
    {gpib::kEneb, "ENEB", "there is no such board"},
    {10, "EOIP", "another transfer is still on its way"},
    {11, "ECAP", "this way to the bus can't do it"},
    {12, "EFSO", "a file of the driver failed"},
    {14, "EBUS", "the bus takes no commands: a cable, or a device that is switched off"},
    {15, "ESTB", "a status byte was lost"},
    {16, "ESRQ", "a device holds the service request"},
    {20, "ETAB", "there is more than fits into the list"},
};

const ErrorName* NameOf(int code) {
  const auto* const found = std::ranges::find(kErrors, code, &ErrorName::Code);
  return found == std::end(kErrors) ? nullptr : found;
}

}  // namespace

std::string GpibMnemonics(const GpibStatusCells& status) {
  if ((status.status & gpib::kErr) == 0) return {};
  const ErrorName* const name = NameOf(status.error);
  const std::string error = name ? name->Mnemonic : "error " + std::to_string(status.error);
  return (status.status & gpib::kTimo) != 0 ? error + " TIMO" : error;
}

std::string GpibStatusInWords(const GpibStatusCells& status) {
  const std::string mnemonics = GpibMnemonics(status);
  if (mnemonics.empty()) return "done";
  const ErrorName* const name = NameOf(status.error);
  const bool timedOut = (status.status & gpib::kTimo) != 0;
  return std::string(timedOut ? "nothing came within the time limit"
                     : name   ? name->Words
                              : "it failed") +
         " (" + mnemonics + ")";
}

}  // namespace hylden
