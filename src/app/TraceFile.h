#pragma once

#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/BusEvent.h"

namespace hylden {

class BusTrace;

/// The trace of the bus as a file, a line for each event. It is written on a thread of its own, since a disk, or a
/// share, may stall and RF may not stand with it: once a second, and at once behind a failure. What can't be written is
/// told once on standard error, and disturbs nothing.
class TraceFile {
 public:
  /// Begins the file anew. @throws RuntimeError when it can't be made
  explicit TraceFile(const std::string& path);
  /// Writes what still waits.
  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  /// Takes what the trace holds, and from now on each event of it; the trace may end before the file, not after.
  void Follow(BusTrace& trace);
  void Add(const BusEvent& event);

 private:
  static constexpr std::size_t kMostWaiting = 100'000;  ///< events of a disk that stalls; further ones are only counted

  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void Work();
  void Write(const std::vector<BusEvent>& events, std::size_t lost);

  const std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
  bool complained_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<BusEvent> waiting_;
  std::size_t lost_ = 0;
  bool urgent_ = false, ending_ = false;
  std::thread thread_;
};

}  // namespace hylden
