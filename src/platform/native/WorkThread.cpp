#include "platform/native/WorkThread.h"

#include <signal.h>

#include <utility>

namespace hylden {

WorkThread::~WorkThread() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void WorkThread::Post(std::function<void()> job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  if (thread_.joinable())
    changed_.notify_all();
  else
    Start();
}

void WorkThread::Wait() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return jobs_.empty(); });
}

/// The program's signals are taken by the program's own thread: here they would wake nobody.
void WorkThread::Start() {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  thread_ = std::thread([this] { Work(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void WorkThread::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    // A deque keeps its first element where it is while others are added behind it.
    std::function<void()>& job = jobs_.front();
    lock.unlock();
    job();
    lock.lock();
    jobs_.pop_front();
    if (jobs_.empty()) changed_.notify_all();
  }
}

}  // namespace hylden
