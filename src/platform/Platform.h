#pragma once

namespace hylden {

class Clock;
class Dialogs;
class EventLoop;
class GpibDriver;
class Printer;
class Speaker;

/// The machine that the program works on, chosen once by main().
struct Platform {
  Dialogs& dialogs;
  Clock& clock;
  EventLoop& events;
  Speaker& speaker;
  Printer& printer;
  GpibDriver& gpib;
};

}  // namespace hylden
