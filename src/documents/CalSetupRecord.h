#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "measure/ReadFreq.h"
#include "shell/FormFields.h"

namespace hylden {

enum class LimitType : std::int32_t { Flat = 0, File = 1 };
enum class CouplingMethod : std::int32_t {
  Clamp150Ohm = 0,         ///< 150-ohm EM clamp or coupling device
  CurrentClamp50Ohm = 1,   ///< bulk current injection clamp
  CurrentClampDirect = 2,  ///< the same, read without a factor
  UserDefined = 3
};

/// How a level calibration is run (.csu). Frequencies and the linear step in MHz, levels in dBm and dB, the test level
/// in volts, the dwell in seconds, the power limit in watts.
struct CalSetupRecord {
  double StartFreq = 0, StopFreq = 0;
  hylden::StepType StepType = hylden::StepType::Linear;
  double LinearStep = 0;
  double LogStep = 0;  ///< percent
  std::string ListFile;
  hylden::LimitType LimitType = hylden::LimitType::Flat;
  float CalLevel = 0;
  std::string LimitFile;
  float MaxLevel = 0;   ///< the highest generator level that the run may set
  float MaxStep = 0;    ///< the largest change of the generator level upward
  float InitLevel = 0;  ///< generator level at the first frequency
  std::int32_t RecordFwdPwr = 0, RecordRevPwr = 0, LimitFwdPwr = 0;  ///< ticks: 0 is off
  float FwdPwrLimit = 0;
  double Reserved1 = 0;
  double Dwell = 0;  ///< settling time at each generator level
  std::string DeviceDescription;
  std::string AmpUsed;
  hylden::CouplingMethod CouplingMethod = hylden::CouplingMethod::Clamp150Ohm;
  std::string SetupDescription;
  float UserDefinedFactor = 0;  ///< of the user-defined coupling method, dB; older files hold 0

  bool Steps(hylden::StepType type) const { return StepType == type; }
  bool HasFlatLevel() const { return LimitType == hylden::LimitType::Flat; }
  bool HasLevelFile() const { return LimitType == hylden::LimitType::File; }
  /// A limit and the reverse power need the forward power, ticked or not.
  bool RecordsForward() const { return RecordFwdPwr != 0 || RecordRevPwr != 0 || LimitFwdPwr != 0; }
  bool RecordsReverse() const { return RecordRevPwr != 0; }
  bool HasOwnFactor() const { return CouplingMethod == hylden::CouplingMethod::UserDefined; }
  bool LimitsForward() const { return LimitFwdPwr != 0; }
};

constexpr std::string_view FileKind(const CalSetupRecord&) {
  return "calibration setup";
}

template <class F>
void Fields(F& f, CalSetupRecord& c) {
  f.Double(c.StartFreq);
  f.Double(c.StopFreq);
  f.Code(c.StepType);
  f.Double(c.LinearStep);
  f.Double(c.LogStep);
  f.Text(c.ListFile);
  f.Code(c.LimitType);
  f.Single(c.CalLevel);
  f.Text(c.LimitFile);
  f.Single(c.MaxLevel);
  f.Single(c.MaxStep);
  f.Single(c.InitLevel);
  f.Int32(c.RecordFwdPwr);
  f.Int32(c.RecordRevPwr);
  f.Int32(c.LimitFwdPwr);
  f.Single(c.FwdPwrLimit);
  f.Double(c.Reserved1);
  f.Double(c.Dwell);
  f.Text(c.DeviceDescription);
  f.Text(c.AmpUsed);
  f.Code(c.CouplingMethod);
  f.Text(c.SetupDescription);
  f.Single(c.UserDefinedFactor);
  f.SpareLines(9);
}

/// The fields of frmCalSetup. What is not in use is neither checked nor taken.
void FormFields(FormWalker& f, CalSetupRecord& s);

/// The entries that show a setup, and a message for every code in it that no option stands for.
/// @param shown  what is shown so far: its choice stays where the setup's code is none
struct CalSetupShown {
  FormEntries Entries;
  std::vector<std::string> Messages;
};
CalSetupShown EntriesOf(const CalSetupRecord& setup, const FormEntries* shown = nullptr);

/// Takes the entries into the setup in the form's order, each field as soon as it has passed.
/// @param validate  stop at the first failure; otherwise nothing is checked, and what is no number is left out
/// @return the failure; lblListFile and lblLimitFile stand for a file that has to be picked
std::optional<EntryFailure> ValidateCalSetup(const FormEntries& entries, bool validate, CalSetupRecord& setup);

/// After a click on chkLimitFwdPwr: a limit needs the forward power.
void LimitFwdPwrClicked(FormEntries& entries);
/// After a click on chkRecordFP: without forward power there is neither reverse power nor a limit.
void RecordFwdPwrClicked(FormEntries& entries);
/// After a click on chkRecordRP: reverse power needs the forward power.
void RecordRevPwrClicked(FormEntries& entries);

/// The fields that name other files.
inline std::vector<std::string*> FileFields(CalSetupRecord& r) {
  return {&r.ListFile, &r.LimitFile};
}

}  // namespace hylden
