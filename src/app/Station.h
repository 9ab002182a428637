#pragma once

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"

namespace hylden {

/// One station: what the whole program shares, built once over one machine.
struct Station {
  Station(const Platform& platform, const Directories& directories)
      : shell(platform, directories), instruments(shell), documents(shell, instruments) {}

  Shell shell;
  Instruments instruments;
  Documents documents;
};

}  // namespace hylden
