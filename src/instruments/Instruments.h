#pragma once

#include "instruments/Gpib.h"
#include "instruments/IfiAmp.h"
#include "instruments/Meter.h"
#include "instruments/PM.h"
#include "instruments/ResponseParser.h"
#include "instruments/SigGen.h"

namespace hylden {

/// The instruments of one station on one bus.
struct Instruments {
  explicit Instruments(Shell& shell)
      : gpib(shell),
        parser(shell),
        sigGen(shell, gpib),
        meter(shell, gpib, parser),
        pm(shell, gpib, parser),
        ifiAmp(shell, gpib, sigGen) {}
  Instruments(const Instruments&) = delete;
  Instruments& operator=(const Instruments&) = delete;

  Gpib gpib;
  ResponseParser parser;
  SigGen sigGen;
  Meter meter;
  PM pm;
  IfiAmp ifiAmp;
};

}  // namespace hylden
