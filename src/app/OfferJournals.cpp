#include "app/OfferJournals.h"

#include <string>
#include <system_error>
#include <utility>

#include "app/Recovery.h"
#include "calibration/InsertionLossText.h"
#include "calibration/RecordQuestion.h"
#include "platform/native/JournalFolder.h"
#include "run/RunQuestions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kTitle = "Recover Recorded Data";

/// The operator's word on one journal.
class Offer {
 public:
  Offer(Shell& shell, const Recovery& recovery)
      : shell_(shell), recovery_(recovery), what_("\r\n\r\n" + DescriptionOf(recovery) + "\r\n\r\n") {}

  /// Whether the run is to be continued; Cancel: the journal is kept as it is.
  MessageAnswer Continued();
  /// Whether the journal is not needed any more.
  bool IsDone();

 private:
  bool Save();
  bool Declined(const std::string& question);
  FileRequest Request();

  Shell& shell_;
  const Recovery& recovery_;
  const std::string what_;
};

MessageAnswer Offer::Continued() {
  return shell_.dialogs.Show(
      {"A run was not ended in order, and can be continued. Its journal holds:" + what_ +
           "Continue it?\r\nNo: it can be saved, or removed. Cancel: it is kept, and asked about "
           "at the next start.",
       question::kContinueRun, MessageIcon::Question, MessageButtons::YesNoCancel});
}

bool Offer::IsDone() {
  if (!recovery_.FillsFile())
    return Declined("A run was not ended in order. Its journal holds too little for a file:" + what_ + "Remove it?");
  const MessageAnswer answer = shell_.dialogs.Show(
      {"A run was not ended in order. Its journal holds:" + what_ +
           "Save it?\r\nNo: it is not needed. Cancel: it is kept, and asked about at the next start.",
       kTitle, MessageIcon::Question, MessageButtons::YesNoCancel});
  if (answer == MessageAnswer::Yes) return Save();
  return answer == MessageAnswer::No && Declined("This is in no file. Drop it for good?" + what_);
}

bool Offer::Declined(const std::string& question) {
  return shell_.dialogs.Show({question, kTitle, MessageIcon::Exclamation, MessageButtons::YesNo}) == MessageAnswer::Yes;
}

bool Offer::Save() {
  const auto path = shell_.dialogs.SaveFile(Request());
  if (!path) return false;
  const bool isRecord = recovery_.Head.Kind == JournalKind::LevelCalibration;
  return (!isRecord || MayReplaceInfo(shell_.dialogs, *path)) && shell_.Ok(SaveRecovery(recovery_, *path));
}

FileRequest Offer::Request() {
  switch (recovery_.Head.Kind) {
    case JournalKind::LevelCalibration:
      return RecordRequest(shell_.settings);
    case JournalKind::InsertionLoss:
      return InsertionLossRequest(shell_.settings);
    case JournalKind::Test:
      break;
  }
  return RunDataRequest(shell_.settings);
}

/// Whether the program has what it takes to open the window of the run.
bool CanBeContinued(const Recovery& recovery) {
  const JournalHead& head = recovery.Head;
  return head.Kind != JournalKind::InsertionLoss && !head.File.empty() && !Obstacle(recovery) && IsUnfinished(recovery);
}

/// One that can't be removed is offered again: the operator may wonder.
void Remove(Shell& shell, const AbandonedJournal& journal) {
  const std::error_code failure = journal.File->Remove();
  if (failure)
    shell.dialogs.Tell("The journal could not be removed, and is offered again at the next start:\r\n" +
                           journal.File->Path() + "\r\n" + failure.message(),
                       MessageIcon::Exclamation);
}

}  // namespace

std::optional<ResumedJournal> OfferJournals(Shell& shell, JournalFolder& folder) {
  if (const auto trouble = folder.Unreadable())
    shell.dialogs.Tell(
        "What an earlier run may have left in its journal can't be read:\r\n" + folder.Folder() + "\r\n" + *trouble,
        MessageIcon::Exclamation);
  std::optional<ResumedJournal> continued;
  for (AbandonedJournal& journal : folder.Abandoned()) {
    auto recovery = RecoveryOf(journal.Bytes);
    if (!recovery) {
      shell.dialogs.Tell("A journal of recorded data can't be read, and is left alone:\r\n" + journal.File->Path() +
                             "\r\n" + recovery.error().Boxes().front().text,
                         MessageIcon::Exclamation);
      continue;
    }
    const bool nothingRecorded = recovery->Recorded == 0 && recovery->Damaged == 0;
    Offer offer(shell, *recovery);
    const bool asks = !continued && CanBeContinued(*recovery);
    const MessageAnswer answer = asks ? offer.Continued() : MessageAnswer::No;
    if (answer == MessageAnswer::Yes)
      continued = ResumedJournal{std::move(*recovery), folder.GoOn(std::move(journal))};
    else if (nothingRecorded || (answer == MessageAnswer::No && offer.IsDone()))
      Remove(shell, journal);
  }
  return continued;
}

}  // namespace hylden
