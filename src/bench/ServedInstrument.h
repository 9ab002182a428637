#pragma once

#include "bench/ServedSession.h"

namespace hylden {

/// A client at a socket of one instrument's own: each line is a message to it, given the end that the instrument
/// expects, and the answer to a question comes back as soon as there is one, ended by LF. An instrument that talks only
/// when a bus addresses it can't be heard here.
class ServedInstrument : public ServedSession {
 public:
  ServedInstrument(ServedBus& bus, int address) : ServedSession(bus, Escapes::None), address_(address) {}

 protected:
  std::string Obey(const std::string& message) override;

 private:
  int address_;
};

}  // namespace hylden
