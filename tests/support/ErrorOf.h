#pragma once

#include "text/RuntimeError.h"

namespace hylden {

/// The number of the error that a call throws; 0 when it throws none.
template <class Call>
int ErrorOf(const Call& call) {
  try {
    call();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace hylden
