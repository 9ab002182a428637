#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "platform/StreamSession.h"
#include "platform/VirtualTime.h"
#include "platform/native/ByteStream.h"

namespace hylden {

/// A connection straight to a session, without a socket between: what is written is heard at once, and while the
/// session is at work the virtual clock goes on. Only a read of an answer that does not come takes real time.
class ServedStream : public ByteStream {
 public:
  using MakeSession = std::function<std::unique_ptr<StreamSession>()>;

  /// Told of every write.
  std::function<void()> onWrite = [] {};

  ServedStream(MakeSession make, VirtualClock& clock) : make_(std::move(make)), clock_(clock) {}

  Outcome Open(Deadline) override {
    said_.clear();
    session_ = make_();
    return Outcome::Done;
  }
  bool IsOpen() const override { return session_ != nullptr; }
  Outcome Write(std::string_view bytes, Deadline) override {
    if (Over()) return Outcome::Lost;
    onWrite();
    session_->Take(bytes);
    while (const auto due = session_->Ended() ? std::nullopt : session_->DueInMs()) {
      clock_.Advance(*due);
      said_ += session_->Serve();
    }
    return Outcome::Done;
  }
  Outcome Read(std::string& bytes, std::size_t most, Deadline deadline) override {
    if (!said_.empty()) {
      bytes += said_.substr(0, most);
      said_.erase(0, most);
      return Outcome::Done;
    }
    if (Over()) return Outcome::Lost;
    std::this_thread::sleep_until(deadline);
    return Outcome::TimedOut;
  }
  std::string Fault() const override { return "The connection is closed."; }
  std::string Name() const override { return "tcp:bench:1"; }

 private:
  bool Over() {
    if (session_ && session_->Ended()) session_.reset();
    return !session_;
  }

  MakeSession make_;
  VirtualClock& clock_;
  std::unique_ptr<StreamSession> session_;
  std::string said_;
};

}  // namespace hylden
