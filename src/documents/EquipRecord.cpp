#include "documents/EquipRecord.h"

#include "text/Numbers.h"

namespace hylden {
namespace {

constexpr int kLowestAddress = 0, kHighestAddress = 30;
constexpr int kAmplifierTab = 2;
constexpr const char *kSigGenBox = "txtSigGenAddr", *kMeterBox = "txtMeterAddr", *kPwrMtrBox = "txtPwrMtrAddr",
                     *kBandSwitchBox = "txtIfiBandSwitch";
/// A shorter path counts as none.
constexpr std::size_t kShortestPath = 2;

std::string RangeText(double lowest, double highest, const char* unit) {
  return "from " + ShortestText(lowest) + " to " + ShortestText(highest) + unit;
}

std::string BandSwitchRange() {
  return RangeText(EquipRecord::kLowestBandSwitchMHz, EquipRecord::kHighestBandSwitchMHz, " MHz");
}

/// An instrument's definition and address.
void InstrumentFields(FormWalker& f, const char* label, std::string file, const char* box, std::int16_t& address) {
  if (f.Uses(file.size() >= kShortestPath, {})) f.Number(box, address, WholeWithin(kLowestAddress, kHighestAddress));
  f.Text(label, file);
}

}  // namespace

std::optional<StartFailure> CheckAmplifier(const EquipRecord& equipment) {
  if (equipment.HasGoodBandSwitch()) return std::nullopt;
  return StartFailure{"The band switch of the IFI amplifier, " + ShortestText(equipment.IfiBandSwitch) +
                          " MHz, is not\r\n" + BandSwitchRange(),
                      kAmplifierTab};
}

void FormFields(FormWalker& f, EquipRecord& e) {
  InstrumentFields(f, "lblSigGen", e.SigGenFile, kSigGenBox, e.SigGenAddress);
  InstrumentFields(f, "lblMeter", e.MeterFile, kMeterBox, e.MeterAddress);
  InstrumentFields(f, "lblPwrMtr", e.PwrMtrFile, kPwrMtrBox, e.PwrMtrAddress);
  auto type = e.HasIfiAmplifier() ? AmpType::Ifi : AmpType::Generic;
  f.Choice({"optGenericAmp", "optIFIAmp"}, type);
  if (f.Uses(type == AmpType::Ifi, {kBandSwitchBox, "chkIfiPwr", "chkIfiAtten"})) {
    f.Number(kBandSwitchBox, e.IfiBandSwitch);
    if (f.Takes()) e.PmBandSwitch = e.IfiBandSwitch;  // amplifier and power meter change their band together
    f.Range(kBandSwitchBox, e.IfiBandSwitch,
            AtLeast(EquipRecord::kLowestBandSwitchMHz).And(AtMost(EquipRecord::kHighestBandSwitchMHz)).In("MHz"));
  }
  f.Text("lblCalCable", e.CableLossFile);
  f.Text("lblFwdPort", e.FwdPortFile);
  f.Text("lblRevPort", e.RevPortFile);
  f.Text("lblMaxPower", e.MaxPowerFile);
  f.Text("lblProbeFile", e.ProbeFile);
  f.Choice({"optSingle", "optDualFwdRev", "optDualSplit"}, e.AmpConfiguration);
  // A code that the program does not know stands for a generic amplifier, and stays.
  if (f.Takes() && (type == AmpType::Ifi) != e.HasIfiAmplifier()) e.AmplifierType = type;
  f.Tick("chkIfiPwr", e.IfiPower);
  f.Tick("chkIfiAtten", e.IfiAtten);
}

FormEntries EntriesOf(const EquipRecord& record) {
  FormEntries entries = EntriesShowing(record);
  if (record.SigGenFile.empty()) entries[kSigGenBox] = "";
  if (record.MeterFile.empty()) entries[kMeterBox] = "";
  if (record.PwrMtrFile.empty()) entries[kPwrMtrBox] = "";
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

}  // namespace hylden
