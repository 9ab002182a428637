#pragma once

#include "bench/ServedBus.h"
#include "platform/StreamSession.h"

namespace hylden {

/// One client of the served bench. A message is a line, ended by CR, LF or both; an empty one is none. While the bus
/// would still be at work for the last message, the next one waits, and so does the answer.
class ServedSession : public StreamSession {
 public:
  /// The longest message, in bytes: a longer one is dropped, up to its end.
  static constexpr std::size_t kLongest = 65536;
  enum class Escapes { None, Esc };

  /// @param escapes  whether the byte behind an ESC belongs to the message, whatever it is
  ServedSession(ServedBus& bus, Escapes escapes) : bus_(bus), escapes_(escapes) {}

  bool TakesMore() const override { return input_.size() < kLongest; }
  void Take(std::string_view bytes) override;
  std::string Serve() override;
  std::optional<std::int64_t> DueInMs() const override;
  bool Ended() const override { return closed_; }

 protected:
  /// Does what the message says. @return what the client gets back
  virtual std::string Obey(const std::string& message) = 0;

  ServedBus& bus_;

 private:
  std::size_t EndOfMessage(std::string_view bytes) const;
  void DropEmptyLines();
  std::string TakeMessage();
  /// Whether the message gets through to the bus.
  bool GetsThrough();

  Escapes escapes_;
  std::string input_;         ///< begins with a message, if there is anything
  std::string output_;        ///< of the last message
  std::int64_t readyMs_ = 0;  ///< when the bus is done with it
  bool tooLong_ = false;      ///< the rest of a message is dropped
  bool closed_ = false, hangs_ = false, garbles_ = false;
};

}  // namespace hylden
