#include "testrun/RunCommands.h"

#include "documents/Documents.h"
#include "run/RunDisplay.h"
#include "run/RunQuestions.h"
#include "shell/Shell.h"
#include "testrun/RunEngine.h"

namespace hylden {

bool RunCommands::Confirm() {
  const CalInfoRec& calibration = documents_.calInfo.Record;
  const MessageAnswer answer = shell_.dialogs.Show(
      {"Make sure proper amp is hooked up,\r\n" + calibration.AmpUsed +
           "\r\nand proper coupling device and cables are connected,\r\n" + calibration.DeviceDescription,
       question::kMakeSure, MessageIcon::Exclamation, MessageButtons::OkCancel});
  return answer == MessageAnswer::Ok;
}

void RunCommands::Run() {
  if (!engine_.IsRunning() && engine_.MayDropRows() && shell_.end.MayStart() && Confirm()) engine_.RunCdiTest();
}

void RunCommands::Halt() {
  shell_.delay.RequestHalt();
  display_.Phase(RunPhase::Halting);
}

void RunCommands::Manual() {
  if (!engine_.IsRunning()) return;
  shell_.delay.StartDelay(double{documents_.testSetup.Definition.InterDwell});
  engine_.RequestManual();
}

}  // namespace hylden
