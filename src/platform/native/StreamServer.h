#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "platform/StreamSession.h"

struct pollfd;

namespace hylden {

/// Serves clients on TCP sockets and on pseudo-terminals: one loop in the caller's thread, which sleeps while nothing
/// comes. Every client has a session of its own and bounded memory; what one of them does, or fails to do, costs the
/// others nothing. What a client has sent before it went away is still done.
class StreamServer {
 public:
  using MakeSession = std::function<std::unique_ptr<StreamSession>()>;
  /// Clients at one time; further ones wait to be let in.
  static constexpr std::size_t kMostClients = 64;

  StreamServer() = default;
  ~StreamServer();
  StreamServer(const StreamServer&) = delete;
  StreamServer& operator=(const StreamServer&) = delete;

  struct Place {
    std::string Host;  ///< as a number
    int Port = 0;
    bool Loopback = true;  ///< only this machine's programs reach it
  };
  /// Listens at the address, a host's name or number.
  /// @param port  0: one that is free
  /// @throws std::runtime_error  in words, when nothing can listen there
  Place Listen(const std::string& address, int port, MakeSession make);
  /// Makes a pseudo-terminal, without echo or line editing, for one client after the other.
  /// @return the device to open
  /// @throws std::runtime_error  in words, when the system has none
  std::string OpenTerminal(MakeSession make);

  /// Serves until the descriptor can be read.
  void Run(int stopDescriptor);

 private:
  struct Listener {
    int Fd;
    MakeSession Make;
  };
  struct Connection {
    int Fd;
    std::unique_ptr<StreamSession> Session;
    std::string TerminalDevice = {};   ///< empty: a socket
    MakeSession Renew = {};            ///< a terminal's, for its next client
    std::string Out = {};              ///< not yet taken by the client
    bool Reads = true, Writes = true;  ///< the client may still send, still takes something
    bool Awaited = false;              ///< a terminal that nobody has opened
  };

  std::vector<pollfd> Waits(int stopDescriptor) const;
  int SleepMs() const;
  void Accept(const Listener& listener);
  void Receive(Connection& connection);
  void Serve(Connection& connection);
  void Flush(Connection& connection);
  static short EventsOf(const Connection& connection);
  static bool IsOver(const Connection& connection);
  /// Away with those that are over; a terminal waits for its next client.
  void ClearAway();
  void LookForClient(Connection& terminal);

  std::vector<Listener> listeners_;
  std::list<Connection> connections_;
};

}  // namespace hylden
