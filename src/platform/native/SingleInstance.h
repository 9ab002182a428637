#pragma once

#include <functional>
#include <optional>
#include <string>

namespace hylden {

/// What a second instance on one computer says.
inline constexpr const char* kAnotherInstanceText = "This application is already running on this computer";

/// One running program per computer, whoever started it and wherever from: two of them on one bus would each switch RF
/// on under the other's test.
/// The place is a name in the kernel (an abstract socket address), not a file: every user reaches it, it can't be left
/// behind, and it is free again the moment its holder ends, however that ends. It is not reachable over the network.
class SingleInstance {
 public:
  /// @param place  the name that is held; a test takes one of its own
  explicit SingleInstance(std::string place = Place());
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Takes the place, until this object goes; false when another instance has it. Where the system can't tell, the
  /// program runs.
  bool Claim();

  /// The holder of the place lets other instances of its user ask.
  /// @return a descriptor that can be read when one does; -1 where that can't be
  int Listen();
  /// Takes one request and sends back what the function answers. A caller that is slow is not waited for.
  void Answer(const std::function<std::string(const std::string& request)>& answer);
  /// Asks the holder of the place. @return nothing where it is another user's, or does not answer in time
  std::optional<std::string> Ask(const std::string& request, int limitMs = 2000) const;

  /// "hylden", the place of every program that drives a bus. The environment variable HYLDEN_LOCK moves tests and
  /// benchmarks to "hylden-" and its value, so that they and a program at work don't refuse each other.
  static std::string Place();

 private:
  std::string place_;
  int socket_ = -1;
};

}  // namespace hylden
