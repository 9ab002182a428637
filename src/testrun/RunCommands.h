#pragma once

namespace hylden {

class RunDisplay;
class RunEngine;
class Shell;
struct Documents;

/// What the run buttons do.
class RunCommands {
 public:
  RunCommands(Shell& shell, Documents& documents, RunEngine& engine, RunDisplay& display)
      : shell_(shell), documents_(documents), engine_(engine), display_(display) {}

  /// Has the operator check amplifier and coupling device, then runs the test; returns when the run has ended.
  void Run();
  /// Ends the run at its next wait.
  void Halt();
  /// Manual mode after the current step; a long dwell in progress ends one intermediate dwell from now.
  void Manual();

 private:
  bool Confirm();

  Shell& shell_;
  Documents& documents_;
  RunEngine& engine_;
  RunDisplay& display_;
};

}  // namespace hylden
