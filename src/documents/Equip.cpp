#include "documents/Equip.h"

#include <utility>

#include "instruments/Instruments.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

constexpr int kLowestAddress = 0, kHighestAddress = 30;
constexpr int kAmplifierTab = 2;
constexpr const char *kSigGenBox = "txtSigGenAddr", *kMeterBox = "txtMeterAddr", *kPwrMtrBox = "txtPwrMtrAddr",
                     *kBandSwitchBox = "txtIfiBandSwitch";
/// A shorter path counts as none.
constexpr std::size_t kShortestPath = 2;

/// Takes an instrument's address from its box.
std::optional<EntryFailure> TakeAddress(const char* control, const std::string& file, const std::string& text,
                                        std::int16_t& address) {
  if (file.size() < kShortestPath) return std::nullopt;
  if (!IsNumeric(text)) return EntryFailure{control, EntryFailure::Kind::NotANumber};
  const double number = ToDouble(text);
  if (number < kLowestAddress || number > kHighestAddress || number != NearestWhole(number))
    return EntryFailure{control, EntryFailure::Kind::OutOfRange};
  address = ToInt16(text);
  return std::nullopt;
}

std::string RangeText(double lowest, double highest, const char* unit) {
  return "from " + ShortestText(lowest) + " to " + ShortestText(highest) + unit;
}

std::string BandSwitchRange() {
  return RangeText(EquipRecord::kLowestBandSwitchMHz, EquipRecord::kHighestBandSwitchMHz, " MHz");
}

std::string AddressText(const std::string& file, std::int16_t address) {
  return file.empty() ? "" : std::to_string(address);
}

}  // namespace

std::optional<StartFailure> CheckAmplifier(const EquipRecord& equipment) {
  if (equipment.HasGoodBandSwitch()) return std::nullopt;
  return StartFailure{"The band switch of the IFI amplifier, " + ShortestText(equipment.IfiBandSwitch) +
                          " MHz, is not\r\n" + BandSwitchRange(),
                      kAmplifierTab};
}

EquipmentEntries EntriesOf(const EquipRecord& record) {
  EquipmentEntries entries;
  entries.SigGenAddress = AddressText(record.SigGenFile, record.SigGenAddress);
  entries.MeterAddress = AddressText(record.MeterFile, record.MeterAddress);
  entries.PwrMtrAddress = AddressText(record.PwrMtrFile, record.PwrMtrAddress);
  entries.IfiBandSwitch = ShortestText(record.IfiBandSwitch);
  entries.Configuration = record.AmpConfiguration;
  entries.Type = record.AmplifierType;
  entries.IfiPower = record.IfiPower;
  entries.IfiAtten = record.IfiAtten;
  entries.CableLossFile = record.CableLossFile;
  entries.FwdPortFile = record.FwdPortFile;
  entries.RevPortFile = record.RevPortFile;
  entries.MaxPowerFile = record.MaxPowerFile;
  entries.ProbeFile = record.ProbeFile;
  return entries;
}

std::string BadEntryText(const EntryFailure& failure, const EquipRecord& station, const std::string& file) {
  const std::string addresses = RangeText(kLowestAddress, kHighestAddress, "");
  const struct {
    const char* control;
    const char* name;
    double value;
    std::string range;
  } entries[] = {{kSigGenBox, "address of the signal generator", static_cast<double>(station.SigGenAddress), addresses},
                 {kMeterBox, "address of the meter", static_cast<double>(station.MeterAddress), addresses},
                 {kPwrMtrBox, "address of the power meter", static_cast<double>(station.PwrMtrAddress), addresses},
                 {kBandSwitchBox, "band switch of the IFI amplifier", station.IfiBandSwitch, BandSwitchRange()}};
  std::string text = "The equipment file holds an entry that can't be used:\r\n" + file;
  for (const auto& entry : entries)
    if (failure.Control == entry.control)
      text += "\r\nThe " + std::string(entry.name) + ", " + ShortestText(entry.value) + ", is not " + entry.range;
  return text;
}

bool SameEntries(const EquipmentEntries& a, const EquipmentEntries& b) {
  return SameEntry(a.SigGenAddress, b.SigGenAddress) && SameEntry(a.MeterAddress, b.MeterAddress) &&
         SameEntry(a.PwrMtrAddress, b.PwrMtrAddress) && SameEntry(a.IfiBandSwitch, b.IfiBandSwitch) &&
         a.Configuration == b.Configuration && a.Type == b.Type && a.IfiPower == b.IfiPower &&
         a.IfiAtten == b.IfiAtten && a.CableLossFile == b.CableLossFile && a.FwdPortFile == b.FwdPortFile &&
         a.RevPortFile == b.RevPortFile && a.MaxPowerFile == b.MaxPowerFile && a.ProbeFile == b.ProbeFile;
}

int Equip::LoadDef(const std::string& path) {
  try {
    EquipRecord read;
    LoadRecord(path, read);
    FilesBeside files(path);
    FindFiles(read, files);
    Record = std::move(read);
    files_ = std::move(files);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "Equip.LoadDef", path);
    return 0;
  }
  Saved = Record;
  shell_.log.LogFile("Equip file: " + path);
  return 1;
}

int Equip::SaveDef(const std::string& path) {
  try {
    SaveRecord(path, WithFileNames(Record, files_, path));
  } catch (const std::exception& error) {
    shell_.ReportError(error, "Equip.SaveDef", path);
    return 0;
  }
  Saved = Record;
  shell_.log.LogFile("Equip file saved: " + path);
  return 1;
}

std::optional<StartFailure> Equip::CheckDefinitions(bool meter, bool powerMeter) const {
  const auto missing = [](const auto& driver, const std::string& file) -> std::optional<StartFailure> {
    if (driver.HasDefinition()) return std::nullopt;
    return StartFailure{"The " + std::string(FileKind(driver.Definition())) + " could not be loaded:\r\n" + file, 0};
  };
  if (auto failure = missing(instruments_.sigGen, Record.SigGenFile)) return failure;
  if (meter)
    if (auto failure = missing(instruments_.meter, Record.MeterFile)) return failure;
  return powerMeter ? missing(instruments_.pm, Record.PwrMtrFile) : std::nullopt;
}

std::optional<EntryFailure> Equip::TakeEntries(const EquipmentEntries& entries) {
  if (auto failure = TakeAddresses(entries)) return failure;
  if (entries.Type == AmpType::Ifi)
    if (auto failure = TakeBandSwitch(entries.IfiBandSwitch)) return failure;
  Record.CableLossFile = entries.CableLossFile;
  Record.FwdPortFile = entries.FwdPortFile;
  Record.RevPortFile = entries.RevPortFile;
  Record.MaxPowerFile = entries.MaxPowerFile;
  Record.ProbeFile = entries.ProbeFile;
  Record.AmpConfiguration = entries.Configuration;
  Record.AmplifierType = entries.Type;
  Record.IfiPower = entries.IfiPower;
  Record.IfiAtten = entries.IfiAtten;
  return std::nullopt;
}

std::optional<EntryFailure> Equip::TakeAddresses(const EquipmentEntries& entries) {
  if (auto failure = TakeAddress(kSigGenBox, Record.SigGenFile, entries.SigGenAddress, Record.SigGenAddress))
    return failure;
  if (auto failure = TakeAddress(kMeterBox, Record.MeterFile, entries.MeterAddress, Record.MeterAddress))
    return failure;
  return TakeAddress(kPwrMtrBox, Record.PwrMtrFile, entries.PwrMtrAddress, Record.PwrMtrAddress);
}

std::optional<EntryFailure> Equip::TakeBandSwitch(const std::string& text) {
  if (!IsNumeric(text)) return EntryFailure{kBandSwitchBox, EntryFailure::Kind::NotANumber};
  const double bandSwitch = ToDouble(text);
  // Amplifier and power meter change their band together.
  Record.IfiBandSwitch = bandSwitch;
  Record.PmBandSwitch = bandSwitch;
  if (!(bandSwitch >= EquipRecord::kLowestBandSwitchMHz && bandSwitch <= EquipRecord::kHighestBandSwitchMHz))
    return EntryFailure{kBandSwitchBox, EntryFailure::Kind::OutOfRange};
  return std::nullopt;
}

}  // namespace hylden
