#include "run/UnsavedRows.h"

#include <utility>

#include "platform/Dialogs.h"
#include "platform/FlagRaised.h"

namespace hylden {

UnsavedRows::UnsavedRows(Dialogs& dialogs, Questions questions, std::function<bool()> exist,
                         std::function<bool()> write)
    : dialogs_(dialogs), questions_(std::move(questions)), exist_(std::move(exist)), write_(std::move(write)) {}

void UnsavedRows::AskAtTheEnd() {
  const FlagRaised asking(asking_);
  const MessageAnswer answer =
      dialogs_.Show({questions_.AtTheEnd, questions_.Title, MessageIcon::Question, MessageButtons::YesNo});
  if (answer == MessageAnswer::Yes)
    Save();
  else if (state_ == State::New)
    Settle(State::NotWanted);
}

void UnsavedRows::Settle(State state) {
  state_ = state;
  if (onSettled) onSettled();
}

bool UnsavedRows::Save() {
  if (!AreSaved() && !AreKept()) state_ = State::Wanted;
  const FlagRaised asking(asking_);
  const bool written = write_();
  if (written) Settle(State::Saved);
  return written;
}

bool UnsavedRows::MayDrop() {
  if (!Any()) return true;
  const FlagRaised asking(asking_);
  const MessageAnswer answer =
      dialogs_.Show({questions_.BeforeDropping, questions_.Title, MessageIcon::Question, MessageButtons::YesNoCancel});
  if (answer == MessageAnswer::Yes) return Save();
  if (answer == MessageAnswer::No) Settle(State::LetGo);
  return answer == MessageAnswer::No;
}

bool UnsavedRows::MayLeave() {
  return state_ == State::NotWanted || AreKept() || MayDrop();
}

}  // namespace hylden
