#pragma once

namespace hylden {

/// What the manual form shows when it opens.
struct ManualStart {
  int Step = 1;
  int HighestStep = 1;
  float LevelOffset = 0;  ///< dB
  double Freq = 0;        ///< MHz
  bool ModEnabled = false;
  bool ModOn = false;
  bool RfOn = false;
};

/// The windows around a test run: its buttons, its File menu, the manual form. A runner without windows keeps the
/// defaults, which do nothing.
class RunControls {
 public:
  virtual ~RunControls() = default;

  /// A run is in progress: Halt and Manual can be pressed, and Escape halts.
  virtual void SetRunMode() {}
  /// Ready: Run and Exit can be pressed, Escape exits, Enter runs.
  virtual void SetHaltMode() {}
  /// Halt was pressed: no button can be pressed any more, Halt stays visible.
  virtual void SetHalting() {}
  virtual void FileMenuEnabled(bool) {}
  /// The window of the run buttons as a whole.
  virtual void ButtonsEnabled(bool) {}
  /// Hides the run buttons, remembering their place, and shows them there again.
  virtual void ButtonsVisible(bool) {}

  virtual void OpenManual(const ManualStart&) {}
  virtual void CloseManual() {}
  /// The frequency of the step that manual mode went to, MHz.
  virtual void ManualFreq(double) {}
  /// Whether RF is on, after manual mode changed it or an instrument refused.
  virtual void ManualRf(bool) {}
  /// Whether the modulation is on, after manual mode was to change it.
  virtual void ManualMod(bool) {}
};

}  // namespace hylden
