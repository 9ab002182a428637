#include "shell/Version.h"

namespace hylden {

std::string VersionTitle() {
  return "Hylden " + std::to_string(HYLDEN_MAJOR) + "." + std::to_string(HYLDEN_MINOR);
}

}  // namespace hylden
