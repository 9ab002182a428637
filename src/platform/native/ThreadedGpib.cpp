#include "platform/native/ThreadedGpib.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/EventLoop.h"
#include "platform/GpibTimeLimit.h"
#include "platform/native/ErrorCapture.h"

#ifndef _WIN32
#include <csignal>
#endif

namespace hylden {

namespace {

constexpr const char* kCheck =
    " Check the bus, its adapter and the cables; if that does not help, start the program again.";

BusPatience::Time TimeLimit(int code) {
  return std::chrono::milliseconds(gpib::TimeLimitMs(code));
}

std::string To(int address) {
  return " to address " + std::to_string(address);
}

std::string To(std::span<const std::int16_t> addresses) {
  const auto end = std::find(addresses.begin(), addresses.end(), gpib::kNoAddr);
  return end == addresses.begin() ? std::string() : To(*(end - 1));
}

/// A thread on which no signal is handled: they belong to the program's own.
template <class Function>
std::thread QuietThread(Function function) {
#ifndef _WIN32
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(function));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
#else
  return std::thread(std::move(function));
#endif
}

}  // namespace

struct ThreadedGpib::Call {
  std::string Name = {};
  Work Do = {};
  bool IsDone = false;
  GpibStatusCells Status = {};
  std::string Advice = {}, Chatter = {};
  std::exception_ptr Thrown = {};
};

/// What the thread works on, and what outlives the owner where a call does not return. While there is a current call,
/// driver and cells are the thread's.
struct ThreadedGpib::Worker {
  std::unique_ptr<GpibDriver> Driver;
  GpibStatusCells Cells;
  std::mutex Lock;
  std::condition_variable Asked, Answered;
  std::shared_ptr<Call> Current;
  bool Ends = false;
  std::string Chatter;
  // Only of the owner.
  BusPatience::Time Limit = TimeLimit(gpib::kT10s);  // what boards begin with
  Instant LateUntil;                                 // a call that was given up is waited for until then
  std::optional<int> MissedLimit;                    // could not be set while a call was stuck
};

ThreadedGpib::ThreadedGpib(std::unique_ptr<GpibDriver> driver, EventLoop& events, const BusPatience& patience)
    : events_(events), patience_(patience), worker_(std::make_shared<Worker>()) {
  worker_->Driver = std::move(driver);
  thread_ = QuietThread([worker = worker_] { DoCalls(*worker); });
}

ThreadedGpib::~ThreadedGpib() {
  bool isStuck = false;
  {
    const std::lock_guard lock(worker_->Lock);
    worker_->Ends = true;
    isStuck = worker_->Current != nullptr;
  }
  worker_->Asked.notify_one();
  isStuck ? thread_.detach() : thread_.join();
}

void ThreadedGpib::DoCalls(Worker& worker) {
  std::unique_lock lock(worker.Lock);
  while (true) {
    worker.Asked.wait(lock, [&] { return worker.Ends || worker.Current; });
    const std::shared_ptr<Call> call = worker.Current;
    if (!call) return;
    lock.unlock();
    DoCall(worker, *call);
    lock.lock();
    worker.Chatter += call->Chatter;
    call->IsDone = true;
    worker.Current.reset();
    worker.Answered.notify_one();
  }
}

void ThreadedGpib::DoCall(Worker& worker, Call& call) {
  try {
    call.Do(*worker.Driver);
    call.Status = worker.Cells;
    call.Advice = worker.Driver->Advice();
    call.Chatter = worker.Driver->TakeChatter();
  } catch (...) {
    call.Thrown = std::current_exception();
  }
}

bool ThreadedGpib::IsBusy() const {
  const std::lock_guard lock(worker_->Lock);
  return worker_->Current != nullptr;
}

template <class Condition>
bool ThreadedGpib::Await(Condition condition, Instant deadline) const {
  const auto now = [] { return std::chrono::steady_clock::now(); };
  std::unique_lock lock(worker_->Lock);
  if (worker_->Answered.wait_until(lock, std::min(deadline, now() + patience_.Plain), condition)) return true;
  while (now() < deadline) {
    lock.unlock();
    events_.Repaint();
    lock.lock();
    if (worker_->Answered.wait_until(lock, std::min(deadline, now() + patience_.Turn), condition)) return true;
  }
  return condition();
}

std::shared_ptr<ThreadedGpib::Call> ThreadedGpib::Refused() const {
  const std::lock_guard lock(worker_->Lock);
  return std::make_shared<Call>(
      Call{.Status = {gpib::kErr | gpib::kCmpl, gpib::kEoip, 0, 0},
           .Advice = "The bus is still busy: " + (worker_->Current ? worker_->Current->Name : "the call before") +
                     " does not return." + kCheck});
}

std::shared_ptr<ThreadedGpib::Call> ThreadedGpib::Do(const std::string& name, Work work) const {
  Worker& worker = *worker_;
  if (!Await([&] { return !worker.Current; }, worker.LateUntil)) return Refused();
  if (const auto missed = std::exchange(worker.MissedLimit, std::nullopt))
    work = [code = *missed, rest = std::move(work)](GpibDriver& driver) {
      driver.ibtmo(0, code);
      rest(driver);
    };
  auto call = std::make_shared<Call>(Call{.Name = name, .Do = std::move(work)});
  {
    const std::lock_guard lock(worker.Lock);
    worker.Current = call;
  }
  worker.Asked.notify_one();
  const Instant deadline = std::chrono::steady_clock::now() + worker.Limit + worker.Limit / 10 + patience_.Grace;
  if (Await([&] { return call->IsDone; }, deadline)) return call;
  // A library may keep to the limit twice in one call, once to address the instrument and once for its bytes.
  worker.LateUntil = std::chrono::steady_clock::now() + std::max<BusPatience::Time>(patience_.Late, worker.Limit);
  ErrorCapture::PutBack();  // what a driver that hangs was keeping is the program's: it has something to tell
  return std::make_shared<Call>(Call{.Status = {gpib::kErr | gpib::kTimo | gpib::kCmpl, gpib::kEabo, 0, 0},
                                     .Advice = name + " does not return, although its time limit is over." + kCheck});
}

bool ThreadedGpib::TakeOver(const Call& call) {
  if (call.Thrown) std::rethrow_exception(call.Thrown);
  advice_ = call.Advice;
  if (cells_) *cells_ = call.Status;
  return call.IsDone;
}

bool ThreadedGpib::Done(const std::string& name, Work work) {
  return TakeOver(*Do(name, std::move(work)));
}

int ThreadedGpib::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  constexpr int kRefused = 3;
  const auto result = std::make_shared<int>(kRefused);
  cells_ = &cells;
  const bool done = Done("Registering", [result, &own = worker_->Cells](GpibDriver& driver) {
    *result = driver.RegisterGpibGlobalsForThread(own);
  });
  return done ? *result : kRefused;
}

int ThreadedGpib::UnregisterGpibGlobalsForThread() {
  const auto result = std::make_shared<int>(0);
  const bool done =
      Done("Unregistering", [result](GpibDriver& driver) { *result = driver.UnregisterGpibGlobalsForThread(); });
  cells_ = nullptr;
  return done ? *result : 0;
}

void ThreadedGpib::SendIFC(int board) {
  Done("The interface clear", [board](GpibDriver& driver) { driver.SendIFC(board); });
}

void ThreadedGpib::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  const auto found = std::make_shared<std::vector<std::int16_t>>(results.begin(), results.end());
  const bool done = Done("Finding" + To(addresses), [=, list = std::vector(addresses.begin(), addresses.end())](
                                                        GpibDriver& driver) { driver.FindLstn(board, list, *found); });
  if (done) std::copy(found->begin(), found->end(), results.begin());
}

void ThreadedGpib::SetRWLS(int board, std::span<const std::int16_t> addresses) {
  Done("The remote command" + To(addresses), [board, list = std::vector(addresses.begin(), addresses.end())](
                                                 GpibDriver& driver) { driver.SetRWLS(board, list); });
}

void ThreadedGpib::EnableLocal(int board, std::span<const std::int16_t> addresses) {
  Done("The local command" + To(addresses), [board, list = std::vector(addresses.begin(), addresses.end())](
                                                GpibDriver& driver) { driver.EnableLocal(board, list); });
}

void ThreadedGpib::Send(int board, int address, std::string_view bytes, int eotMode) {
  Done("Sending" + To(address),
       [=, text = std::string(bytes)](GpibDriver& driver) { driver.Send(board, address, text, eotMode); });
}

void ThreadedGpib::Receive(int board, int address, std::span<char> buffer, int termination) {
  const auto bytes = std::make_shared<std::vector<char>>(buffer.begin(), buffer.end());
  const bool done =
      Done("The read" + To(address), [=](GpibDriver& driver) { driver.Receive(board, address, *bytes, termination); });
  if (done) std::copy(bytes->begin(), bytes->end(), buffer.begin());
}

void ThreadedGpib::ibtmo(int board, int code) {
  if (IsBusy()) {
    // Not worth waiting for a call that was given up: the next one that is done brings it along.
    worker_->MissedLimit = code;
    TakeOver(*Refused());
  } else {
    // It is set back before anybody asks why the call that needed it failed.
    const std::string before = advice_;
    Done("Setting the time limit", [=](GpibDriver& driver) { driver.ibtmo(board, code); });
    if (advice_.empty()) advice_ = before;
  }
  worker_->Limit = TimeLimit(code);
}

std::string ThreadedGpib::Way(int address) const {
  const auto way = std::make_shared<std::string>();
  const auto call = Do("Asking", [=](GpibDriver& driver) { *way = driver.Way(address); });
  return call->IsDone ? *way : call->Advice;
}

std::string ThreadedGpib::TakeChatter() {
  const std::lock_guard lock(worker_->Lock);
  return std::exchange(worker_->Chatter, {});
}

}  // namespace hylden
