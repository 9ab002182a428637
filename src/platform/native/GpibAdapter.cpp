#include "platform/native/GpibAdapter.h"

#include <algorithm>
#include <utility>

namespace hylden {

namespace {

using std::chrono::milliseconds;

constexpr int kEarg = 4, kHighestAddress = 30, kOnTheWayMs = 100;
constexpr std::size_t kPiece = 4096, kLongestLine = 512;  // of an adapter itself
constexpr char kEsc = '\x1b';
constexpr std::string_view kComplaint = "Unrecognized command";

// What an adapter passes on is a stream without EOI. All of them can put a character of our choice behind the byte that
// came with EOI, and no instrument's text holds this one (EOT). One that does not know how to is read up to an LF with
// nothing behind it.
constexpr char kMark = '\x04';
constexpr milliseconds kQuiet(50);

// Short enough for adapters that hold 64 bytes. Nothing is to be stored (on those that would store each setting), no
// read without "++read", EOI with the last byte of a message, nothing appended to it.
constexpr const char* kHello = "++savecfg 0\n++ver\n++ver\n";
constexpr const char* kSettings = "++mode 1\n++auto 0\n++eoi 1\n++eos 3\n++eot_char 4\n++eot_enable 1\n";

ByteStream::Deadline Now() {
  return std::chrono::steady_clock::now();
}

bool IsAddress(int address) {
  return address >= 0 && address <= kHighestAddress;
}

std::string Escaped(std::string_view bytes) {
  constexpr std::string_view kSpecial = "\r\n\x1b+";
  std::string line;
  for (const char byte : bytes) {
    if (kSpecial.find(byte) != std::string_view::npos) line += kEsc;
    line += byte;
  }
  return line + "\n";
}

}  // namespace

GpibAdapter::GpibAdapter(std::unique_ptr<ByteStream> stream, int longestReadMs)
    : StreamGpib(std::move(stream)), longestReadMs_(longestReadMs) {}

// ---- the adapter itself

StreamGpib::Outcome GpibAdapter::SetUp(Deadline deadline) {
  unread_.clear();
  complaint_.clear();
  address_ = readLimitMs_ = crEndedAddress_ = -1;
  answer_ = {};
  marksEnds_ = false;
  const Outcome asked = AskVersion(deadline);
  return asked == Outcome::Done ? Obey(kSettings, deadline) : asked;
}

/// The version is the line that comes twice: what was still on its way, or a greeting, does not.
StreamGpib::Outcome GpibAdapter::AskVersion(Deadline deadline) {
  // One that restarts when its line is opened hears nothing at first. Half a command that an adapter may still hold is
  // spoilt by the first line behind it, so that no instrument takes it for a whole one.
  int owed = std::exchange(owesVersion_, false) ? 1 : 0;
  do {
    const Deadline again = std::min(deadline, Now() + milliseconds(500));
    Outcome outcome = Write(kHello, again);
    for (std::string before; outcome == Outcome::Done; before = version_) {
      outcome = ReadLine(version_, again);
      if (outcome == Outcome::Done && !version_.empty() && version_ == before) return AwaitVersions(owed, deadline);
    }
    if (outcome == Outcome::Lost) return outcome;
    owed += 2;
  } while (Now() < deadline);
  fault_ =
      Stream().Name() +
      " can be opened, but does not answer ++ver: check that it is a GPIB adapter, its port or speed, and that no " +
      "other program uses it.";
  return Outcome::Lost;
}

/// A slow one answers a hello that was repeated more than once, a serial one what it was asked before the line was
/// opened anew. Left behind, that would pass for the answer to each later question, and in the end for a reading.
StreamGpib::Outcome GpibAdapter::AwaitVersions(int count, Deadline deadline) {
  Outcome outcome = Outcome::Done;
  for (std::string line; count > 0 && outcome == Outcome::Done;) {
    const auto now = Now();
    outcome = ReadLine(line, now + std::min<Deadline::duration>(milliseconds(500), (deadline - now) / 4));
    if (outcome == Outcome::Done && line == version_) --count;
  }
  return outcome == Outcome::Lost ? outcome : Outcome::Done;
}

StreamGpib::Outcome GpibAdapter::ReadLine(std::string& line, Deadline deadline) {
  std::size_t end = 0;
  while ((end = unread_.find('\n')) == std::string::npos) {
    if (unread_.size() > kPiece) unread_.erase(0, unread_.size() - kLongestLine);
    const Outcome outcome = Stream().Read(unread_, kPiece, deadline);
    if (outcome != Outcome::Done) return outcome;
    if (Now() >= deadline) return Outcome::TimedOut;  // a source that never ends is never late
  }
  line = unread_.substr(0, end);
  unread_.erase(0, end + 1);
  while (line.ends_with('\r')) line.pop_back();
  return Outcome::Done;
}

StreamGpib::Outcome GpibAdapter::Drop() {
  constexpr int kMostPieces = 1000;
  Outcome outcome = Outcome::Done;
  for (int n = 0; n < kMostPieces && outcome == Outcome::Done; ++n) {
    unread_.clear();
    outcome = Stream().Read(unread_, kPiece, Deadline());
  }
  unread_.clear();
  return outcome == Outcome::Lost ? outcome : Outcome::Done;
}

int GpibAdapter::UsualReadMs() const {
  return static_cast<int>(std::clamp<std::int64_t>(LimitMs(), 1, longestReadMs_));
}

std::string GpibAdapter::Turned(int address, int limitMs) {
  std::string lines;
  if (std::exchange(address_, address) != address) lines += "++addr " + std::to_string(address) + "\n";
  // Some adapters cut a command short where the instrument takes a byte later than this.
  if (std::exchange(readLimitMs_, limitMs) != limitMs) lines += "++read_tmo_ms " + std::to_string(limitMs) + "\n";
  return lines;
}

StreamGpib::Outcome GpibAdapter::Obey(const std::string& lines, Deadline deadline) {
  answer_ = {};
  Outcome outcome = Drop();
  if (outcome == Outcome::Done) outcome = Write(lines + "++ver\n", deadline);
  std::string line;
  while (outcome == Outcome::Done) {
    outcome = ReadLine(line, deadline);
    if (outcome == Outcome::Done && line.ends_with(version_)) return outcome;
    if (line.starts_with(kComplaint)) complaint_ = line;
  }
  owesVersion_ = outcome == Outcome::TimedOut;
  Abandon();
  return outcome;
}

/// Sets the status; after a failure nothing is taken for granted.
void GpibAdapter::Conclude(Outcome outcome, std::size_t count, int extraStatus) {
  if (outcome != Outcome::Done) address_ = readLimitMs_ = -1;
  Finish(outcome, count, extraStatus);
}

// ---- calls

void GpibAdapter::SendIFC(int board) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  Outcome outcome = Open(deadline);
  if (outcome == Outcome::Done) outcome = Obey("++ifc\n", deadline);
  Conclude(outcome);
}

void GpibAdapter::FindLstn(int board, std::span<const std::int16_t>, std::span<std::int16_t>) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  answer_ = {};
  if (Stands()) Drop();
  const Outcome outcome = Ready(deadline);
  if (outcome != Outcome::Done) return Conclude(outcome);
  Fail(gpib::kEcap, {});
}

void GpibAdapter::ToEach(int board, std::span<const std::int16_t> addresses, const char* command) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  Outcome outcome = Ready(deadline);
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr || outcome != Outcome::Done) break;
    if (address == 0) continue;  // the controller's own
    if (!IsAddress(address)) return Fail(kEarg, {});
    outcome = Obey(Turned(address, UsualReadMs()) + command, deadline);
  }
  Conclude(outcome);
}

void GpibAdapter::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  ToEach(board, addresses, "++llo\n");
}

void GpibAdapter::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  ToEach(board, addresses, "++loc\n");
}

void GpibAdapter::Send(int board, int address, std::string_view bytes, int eotMode) {
  if (Refused(board)) return;
  if (!IsAddress(address)) return Fail(kEarg, {});
  const Deadline deadline = Limit();
  std::string message = bytes.empty() ? std::string() : Escaped(bytes);
  if (eotMode != gpib::kDabEnd) message = "++eoi 0\n" + message + "++eoi 1\n";
  Outcome outcome = Ready(deadline);
  if (outcome == Outcome::Done) outcome = Obey(Turned(address, UsualReadMs()) + message, deadline);
  Conclude(outcome, outcome == Outcome::Done ? bytes.size() : 0);
}

void GpibAdapter::Receive(int board, int address, std::span<char> buffer, int termination) {
  if (Refused(board)) return;
  if (!IsAddress(address)) return Fail(kEarg, {});
  const Deadline deadline = Limit();
  if (!Stands()) {
    if (Open(deadline) == Outcome::Done) fault_ = "The adapter was lost, and with it the answer; it is there again.";
    return Conclude(Outcome::Lost);
  }
  Outcome outcome = Outcome::Done;
  if (answer_.Address != address) {
    // What came unasked, as the mark behind a byte that ended a read, is not of this answer.
    answer_ = {};
    outcome = Drop();
    answer_.Address = address;
  }
  std::size_t count = 0;
  if (outcome == Outcome::Done) outcome = ReadAnswer(buffer, termination, deadline, count);
  const bool ended = outcome == Outcome::Done && answer_.IsOver;
  if (ended) answer_ = {};
  Conclude(outcome, count, ended ? gpib::kEnd : 0);
}

// ---- answers

StreamGpib::Outcome GpibAdapter::ReadAnswer(std::span<char> buffer, int termination, Deadline deadline,
                                            std::size_t& count) {
  while (true) {
    Take(buffer, termination, count);
    if (answer_.IsOver || count == buffer.size()) return Outcome::Done;
    const bool isPause = termination == gpib::kStopEnd && !marksEnds_ && answer_.LastByte == '\n';
    const bool isLate = Now() >= deadline;
    if (isLate && !isPause) return Outcome::TimedOut;
    Outcome outcome = isPause || Now() < answer_.Until ? Outcome::Done : AskToRead(termination, deadline);
    const Deadline until = isPause ? Now() + kQuiet : answer_.Until;
    if (outcome == Outcome::Done) outcome = Stream().Read(unread_, kPiece, std::min(deadline, until));
    if (outcome == Outcome::Lost) return outcome;
    if (outcome == Outcome::Done) answer_.Until = Now() + answer_.Patience;
    answer_.IsOver = isPause && outcome == Outcome::TimedOut;
  }
}

StreamGpib::Outcome GpibAdapter::AskToRead(int termination, Deadline deadline) {
  // The last read of a long limit ends with it, so that the adapter is free for what comes then.
  const auto left = std::chrono::ceil<milliseconds>(deadline - Now()).count();
  const bool isFirst = answer_.Until == Deadline();
  const int limitMs = isFirst ? UsualReadMs() : static_cast<int>(std::clamp<std::int64_t>(left, 1, UsualReadMs()));
  const std::string end = termination == gpib::kStopEnd ? "eoi" : std::to_string(termination);
  const Outcome outcome = Write(Turned(answer_.Address, limitMs) + "++read " + end + "\n", deadline);
  // The adapter waits as long for each byte; and a little for the way.
  answer_.Patience = milliseconds(limitMs + std::min(limitMs, kOnTheWayMs));
  answer_.Until = Now() + answer_.Patience;
  return outcome;
}

void GpibAdapter::SkipWhatIsNoAnswer() {
  while (!unread_.empty()) {
    const std::size_t lineEnd = unread_.find('\n');
    if (unread_.front() == kMark) {  // of a byte that ended a read by itself
      unread_.erase(0, 1);
      marksEnds_ = true;
      if (std::exchange(answer_.Skips, false)) answer_.Until = Now();
    } else if (unread_.front() == '\n' && crEndedAddress_ == answer_.Address) {  // of a CR LF that was read up to CR
      unread_.erase(0, 1);
      crEndedAddress_ = -1;
      answer_.Skips = true;
    } else if (unread_.starts_with(kComplaint) && lineEnd != std::string::npos) {
      complaint_ = unread_.substr(0, unread_.find_first_of("\r\n"));
      unread_.erase(0, lineEnd + 1);
    } else {
      return;
    }
  }
}

/// Moves what is there of the answer into the buffer.
void GpibAdapter::Take(std::span<char> buffer, int termination, std::size_t& count) {
  if (answer_.LastByte < 0) SkipWhatIsNoAnswer();
  const bool isHalfComplaint = answer_.LastByte < 0 && unread_.size() < 2 * kComplaint.size() &&
                               (unread_.starts_with(kComplaint) || kComplaint.starts_with(unread_));
  if (unread_.empty() || isHalfComplaint) return;
  const std::size_t mark = unread_.find(kMark);
  const std::size_t last =
      termination == gpib::kStopEnd ? std::string::npos : unread_.find(static_cast<char>(termination));
  const bool isMarked = mark < last;
  const std::size_t there = std::min({mark, last == std::string::npos ? last : last + 1, unread_.size()});
  const std::size_t taken = std::min(there, buffer.size() - count);
  unread_.copy(buffer.data() + count, taken);
  count += taken;
  if (taken > 0) answer_.LastByte = static_cast<unsigned char>(unread_[taken - 1]), crEndedAddress_ = -1;
  unread_.erase(0, taken);
  answer_.IsOver = taken == there && (isMarked || last != std::string::npos);
  if (!answer_.IsOver) return;
  if (isMarked) unread_.erase(0, 1), marksEnds_ = true;
  if (!isMarked && termination == '\r') crEndedAddress_ = answer_.Address;
}

std::string GpibAdapter::Way(int) const {
  std::string state = version_;
  if (!Stands()) state = Advice().empty() ? Stream().Fault() : Advice();
  return "adapter " + Stream().Name() + ", " + state + (complaint_.empty() ? "" : "; it has said: " + complaint_);
}

}  // namespace hylden
