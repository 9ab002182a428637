#include "app/TraceFile.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "platform/BusTrace.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {

TraceFile::TraceFile(const std::string& path) : path_(path), file_(std::fopen(SavePath(path).c_str(), "w")) {
  if (!file_) throw RuntimeError(ErrorNumber::PathFileAccessError);
  thread_ = std::thread([this] { Work(); });
}

TraceFile::~TraceFile() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void TraceFile::Follow(BusTrace& trace) {
  for (std::uint64_t number = trace.Begin(); number < trace.End(); ++number) Add(trace[number]);
  trace.onEvent = [this](const BusEvent& event) { Add(event); };
}

void TraceFile::Add(const BusEvent& event) {
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() < kMostWaiting)
      waiting_.push_back(event);
    else
      ++lost_;
    urgent_ = urgent_ || event.Failed();
    if (!urgent_) return;
  }
  changed_.notify_one();
}

void TraceFile::Work() {
  std::unique_lock lock(mutex_);
  while (!ending_ || !waiting_.empty()) {
    changed_.wait_for(lock, std::chrono::seconds(1), [this] { return ending_ || urgent_; });
    urgent_ = false;
    const auto events = std::exchange(waiting_, {});
    const std::size_t lost = std::exchange(lost_, 0);
    lock.unlock();
    Write(events, lost);
    lock.lock();
  }
}

void TraceFile::Write(const std::vector<BusEvent>& events, std::size_t lost) {
  if (events.empty()) return;
  std::string text;
  for (const BusEvent& event : events) text += LineOf(event) + "\n";
  if (lost > 0) text += "(" + std::to_string(lost) + " events are missing here: the file could not keep up)\n";
  const bool written = std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size();
  if ((written && std::fflush(file_.get()) == 0) || std::exchange(complained_, true)) return;
  std::fprintf(stderr, "The trace can't be written to %s: %s\n", path_.c_str(), std::strerror(errno));
}

}  // namespace hylden
