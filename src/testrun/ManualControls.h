#pragma once

namespace hylden {

/// What the manual form shows when it opens.
struct ManualStart {
  int Step = 1;
  int HighestStep = 1;
  double Freq = 0;  ///< MHz
  bool ModEnabled = false;
  bool ModOn = false;
  bool RfOn = false;
};

/// The operator's window of manual mode. A runner without windows keeps the defaults, which do nothing.
class ManualControls {
 public:
  virtual ~ManualControls() = default;

  /// The manual form stands in for the run buttons until it is closed.
  virtual void OpenManual(const ManualStart&) {}
  virtual void CloseManual() {}
  /// Manual mode went to this step; its row of the run data is the one to look at until manual mode ends.
  virtual void ManualStep(int /*step*/, int /*row*/, double /*frequencyMHz*/) {}
  /// Whether RF is on, after manual mode changed it or an instrument refused.
  virtual void ManualRf(bool) {}
  /// Whether the modulation is on, after manual mode was to change it.
  virtual void ManualMod(bool) {}
};

}  // namespace hylden
