#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bench/BenchFault.h"

namespace hylden {

/// What became of a message.
struct Heard {
  bool Understood = false;
  std::optional<std::string> Answer = std::nullopt;
};

/// An instrument on the virtual bus. It takes only messages that end as the End of String code of its definition says
/// (0 none, 1 cr, 2 cr/lf), and ends its answers likewise.
class VirtualInstrument {
 public:
  /// @param endsAnswers  false: only EOI marks the end of an answer
  VirtualInstrument(BenchRole role, std::int32_t endOfString, bool endsAnswers = true);
  virtual ~VirtualInstrument() = default;

  BenchRole Role() const { return role_; }
  /// What ends a message to it, and its answers.
  const std::string& Terminator() const { return terminator_; }
  /// A message from the bus. A bare terminator is understood and does nothing.
  Heard Hear(std::string_view message);
  /// The answer of an instrument that talks whenever it is addressed; nothing when it wants to be asked.
  std::optional<std::string> Talk();

 protected:
  /// A message without its terminator.
  virtual Heard Listen(std::string_view command) = 0;
  virtual std::optional<std::string> Speak() { return std::nullopt; }

 private:
  std::optional<std::string> Ended(std::optional<std::string> answer) const;

  BenchRole role_;
  std::string terminator_;
  bool endsAnswers_;
};

/// An answer: the template with {level} replaced by the level as a plain number (linear units in exponent form),
/// {level:e} by its exponent form, {freq} by the frequency, {channel} by A or B. An empty template is "{level}".
struct AnswerValues {
  double Level = 0;
  bool Linear = false;
  double FreqMHz = 0;
  int Channel = 1;
};
std::string AnswerText(const std::string& pattern, const AnswerValues& values);

/// One triggered measurement. It shows the world at the end of its capture time; until then the former value stands.
class Capture {
 public:
  void Trigger(std::int64_t now, std::int64_t captureMs) {
    readyMs_ = now + captureMs;
    pending_ = true;
  }
  /// Takes the value once the capture time is over: on reading, and before the world changes.
  template <class Measure>
  void Finish(std::int64_t now, Measure measure) {
    if (!pending_ || now < readyMs_) return;
    value_ = measure(readyMs_);
    pending_ = false;
  }
  std::optional<double> Value() const { return value_; }

 private:
  bool pending_ = false;
  std::int64_t readyMs_ = 0;
  std::optional<double> value_;
};

/// Capture time from the bench file, or 80 % of the definition's settling time: an instrument is ready a little before
/// its definition asks for the reading.
std::int64_t CaptureTimeMs(double configuredMs, float settlingSeconds);

}  // namespace hylden
