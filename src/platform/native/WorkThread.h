#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace hylden {

/// Does jobs in the order in which they come, on a thread of its own that begins with the first one.
class WorkThread {
 public:
  WorkThread() = default;
  /// Does what still waits.
  ~WorkThread();
  WorkThread(const WorkThread&) = delete;
  WorkThread& operator=(const WorkThread&) = delete;

  /// @param job  throws nothing
  void Post(std::function<void()> job);
  /// Returns when everything posted has been done.
  void Wait();

 private:
  void Start();
  void Work();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;  ///< the first one is at work
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace hylden
