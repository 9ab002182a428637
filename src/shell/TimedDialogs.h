#pragma once

#include <cstdint>

#include "platform/Clock.h"
#include "platform/Dialogs.h"

namespace hylden {

/// Dialogs that count the time for which they have waited for the operator.
class TimedDialogs : public Dialogs {
 public:
  TimedDialogs(Dialogs& dialogs, const Clock& clock) : dialogs_(dialogs), clock_(clock) {}

  /// All of it up to now, ms.
  std::int64_t WaitedMs() const { return waitedMs_; }

  MessageAnswer Show(const Message& message) override {
    const Waiting waiting(*this);
    return dialogs_.Show(message);
  }
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& text = {}) override {
    const Waiting waiting(*this);
    return dialogs_.InputBox(prompt, title, text);
  }
  std::optional<std::string> OpenFile(const FileRequest& request) override {
    const Waiting waiting(*this);
    return dialogs_.OpenFile(request);
  }
  std::optional<std::string> SaveFile(const FileRequest& request) override {
    const Waiting waiting(*this);
    return dialogs_.SaveFile(request);
  }
  void DefaultPointer() override { dialogs_.DefaultPointer(); }

 private:
  /// A dialog stands as long as it lives. One within another is not counted twice.
  class Waiting {
   public:
    explicit Waiting(TimedDialogs& of) : of_(of), sinceMs_(of.clock_.TickMs()) { ++of_.open_; }
    ~Waiting() {
      if (--of_.open_ == 0) of_.waitedMs_ += of_.clock_.TickMs() - sinceMs_;
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

   private:
    TimedDialogs& of_;
    std::int64_t sinceMs_;
  };

  Dialogs& dialogs_;
  const Clock& clock_;
  std::int64_t waitedMs_ = 0;
  int open_ = 0;
};

}  // namespace hylden
