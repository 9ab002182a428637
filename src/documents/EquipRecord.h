#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/FormFields.h"

namespace hylden {

/// How amplifier power is measured.
enum class AmpConfig : std::int32_t { Single = 0, DualFwdRev = 1, DualSplit = 2 };
enum class AmpType : std::int32_t { Generic = 0, Ifi = 1 };

/// The station's equipment configuration (.eqp). Frequencies in MHz; files as full paths, empty when none.
struct EquipRecord {
  std::string SigGenFile;
  std::int16_t SigGenAddress = 0;
  std::string MeterFile;
  std::int16_t MeterAddress = 0;
  std::string PwrMtrFile;
  std::int16_t PwrMtrAddress = 0;
  AmpConfig AmpConfiguration = AmpConfig::Single;
  double PmBandSwitch = 0;
  std::string CableLossFile;
  std::string FwdPortFile;
  std::string RevPortFile;
  std::string MaxPowerFile;
  std::string ProbeFile;
  AmpType AmplifierType = AmpType::Generic;
  bool IfiPower = false;
  bool IfiAtten = false;
  double IfiBandSwitch = 0;

  static constexpr double kLowestBandSwitchMHz = 200, kHighestBandSwitchMHz = 230;

  bool HasIfiAmplifier() const { return AmplifierType == AmpType::Ifi; }
  /// Whether an IFI amplifier, where there is one, changes its band where it can.
  bool HasGoodBandSwitch() const {
    return !HasIfiAmplifier() || (IfiBandSwitch >= kLowestBandSwitchMHz && IfiBandSwitch <= kHighestBandSwitchMHz);
  }
  bool Is(AmpConfig config) const { return AmpConfiguration == config; }
};

constexpr std::string_view FileKind(const EquipRecord&) {
  return "equipment file";
}

template <class F>
void Fields(F& f, EquipRecord& e) {
  f.Text(e.SigGenFile);
  f.Int16(e.SigGenAddress);
  f.Text(e.MeterFile);
  f.Int16(e.MeterAddress);
  f.Text(e.PwrMtrFile);
  f.Int16(e.PwrMtrAddress);
  f.Code(e.AmpConfiguration);
  f.Double(e.PmBandSwitch);
  f.Text(e.CableLossFile);
  f.Text(e.FwdPortFile);
  f.Text(e.RevPortFile);
  f.Text(e.MaxPowerFile);
  f.Text(e.ProbeFile);
  f.Code(e.AmplifierType);
  f.Flag(e.IfiPower);
  f.Flag(e.IfiAtten);
  f.Double(e.IfiBandSwitch);
  f.SpareLines(9);
}

/// The fields of frmEquipment. The definitions are shown only: choosing one loads it.
void FormFields(FormWalker& f, EquipRecord& e);

/// A check before a run that failed: the message, and the tab of the equipment form where it is mended.
struct StartFailure {
  std::string Text;
  int EquipmentTab = 0;
};

/// The check that every run with the station's amplifier begins with: its band switch.
std::optional<StartFailure> CheckAmplifier(const EquipRecord& equipment);
/// The entries that show a record.
FormEntries EntriesOf(const EquipRecord& record);
/// Tells of an entry of a loaded station that can't be used: file, entry, value and range.
std::string BadEntryText(const EntryFailure& failure, const EquipRecord& station, const std::string& file);

/// The fields that name other files.
inline std::vector<std::string*> FileFields(EquipRecord& r) {
  return {&r.SigGenFile,  &r.MeterFile,   &r.PwrMtrFile,   &r.CableLossFile,
          &r.FwdPortFile, &r.RevPortFile, &r.MaxPowerFile, &r.ProbeFile};
}

}  // namespace hylden
