#pragma once

#include <span>
#include <vector>

#include "bench/ServedSession.h"

namespace hylden {

/// A client at a GPIB adapter, as they are sold for network and USB: lines that begin with "++" are for the adapter,
/// all others go to the instrument that it addresses. A CR, LF, ESC or "+" that belongs to a message has an ESC before
/// it. A setting without a value is asked for. Each client has an adapter of its own as after switching on: no address
/// is another client's. What fails on the bus is silence, after the time limit.
class ServedAdapter : public ServedSession {
 public:
  explicit ServedAdapter(ServedBus& bus) : ServedSession(bus, Escapes::Esc) {}

 protected:
  std::string Obey(const std::string& message) override;

 private:
  using Words = std::span<const std::string>;

  struct Settings {
    int Mode = 1;                    ///< 1 controller; 0 device, which sends nothing to instruments
    int Auto = 0;                    ///< 1: every message is followed by a read
    int Address = 0;                 ///< of the instrument
    int Eoi = 1;                     ///< kept: on the bench every message ends with EOI
    int Eos = 0;                     ///< appended to messages: 0 CR LF, 1 CR, 2 LF, 3 nothing
    int EotEnable = 0, EotChar = 0;  ///< whether an answer's end is marked, and by which character
    int ReadLimitMs = 1000;
    int ListenOnly = 0, Save = 0;  ///< kept
  };
  struct Setting {
    const char* Name;
    int Settings::*Value;
    int Least, Most;
  };
  struct Action {
    const char* Name;
    std::string (ServedAdapter::*Do)(Words);
  };
  static const Setting kSettings[];
  static const Action kActions[];

  std::string Command(Words words);
  std::string Set(const Setting& setting, Words values);
  std::string Message(const std::string& bytes);

  std::string Read(Words);
  std::string ClearInterface(Words);
  std::string Local(Words);
  std::string Lockout(Words);
  std::string Clear(Words);
  std::string Trigger(Words);
  std::string SerialPoll(Words);
  std::string ServiceRequest(Words);
  std::string Version(Words);
  std::string Reset(Words);

  Settings settings_;
};

}  // namespace hylden
