#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace hylden {

/// The other end of a stream: a port of this computer or a pseudo-terminal. It notes what it hears, and answers each
/// line as the test says, on a thread of its own.
class ScriptedPeer {
 public:
  struct Reply {
    std::string Bytes;
    bool Closes = false;  ///< ends the connection behind them
  };
  using Script = std::function<Reply(const std::string& line)>;
  enum class On { Port, Terminal, DeafPort };  ///< a deaf one takes connections, and never reads

  /// By default it is silent.
  explicit ScriptedPeer(Script script = {}, On on = On::Port);
  ~ScriptedPeer();
  ScriptedPeer(const ScriptedPeer&) = delete;
  ScriptedPeer& operator=(const ScriptedPeer&) = delete;

  int Port() const { return port_; }
  const std::string& Device() const { return device_; }
  /// All that was heard so far, over all connections; waits, 2 s at most, until it ends with this.
  std::string HeardUpTo(const std::string& end);
  void Forget();
  int Connections() const { return connections_; }
  /// Whether a connection was ended; waits for it, 2 s at most.
  bool HasHungUp() const;

  /// A port of this computer on which nobody listens.
  static int FreePort();

 private:
  void Listen();
  void OpenTerminal();
  void Serve();
  void Accept();
  void Hear();
  void Answer(const std::string& line);
  void Say();
  void Hang();

  const Script script_;
  int listener_ = -1, line_ = -1, terminal_ = -1, wake_[2] = {-1, -1}, port_ = 0;
  std::string device_, unread_, unsaid_;
  bool closes_ = false;
  std::atomic<int> connections_{0}, hungUp_{0};
  std::mutex mutex_;
  std::string heard_;  ///< guarded by the mutex
  std::thread thread_;
};

}  // namespace hylden
