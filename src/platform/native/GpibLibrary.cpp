#include "platform/native/GpibLibrary.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>
#endif

namespace hylden {

namespace {

/// A library of this name, or why it can't be loaded.
struct Loaded {
  GpibLibrary::Resolver Find;
  std::string Fault;
};

#ifdef _WIN32

constexpr const char* kKnown[] = {"ni4882.dll", "gpib-32.dll"};
constexpr const char* kInstall = "Install the driver of the GPIB board.";

Loaded Load(const std::string& name) {
  const HMODULE library = LoadLibraryA(name.c_str());
  if (!library) return {{}, "error " + std::to_string(GetLastError())};
  return {[library](const char* function) { return reinterpret_cast<void*>(GetProcAddress(library, function)); }, {}};
}

#else

constexpr const char* kKnown[] = {"libgpib.so.0", "libni4882.so.1", "libgpibapi.so"};
constexpr const char* kInstall = "Install the distribution's GPIB package, or the board's own driver.";

Loaded Load(const std::string& name) {
  if (void* const library = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL))
    return {[library](const char* function) { return dlsym(library, function); }, {}};
  const char* const fault = dlerror();
  return {{}, fault ? fault : "unknown fault"};
}

#endif

/// By its file's name or, where somebody has renamed it, by a function that no other library has.
bool IsOfLinuxGpib(const std::string& name, const GpibLibrary::Resolver& find) {
  return std::filesystem::path(name).filename().string().starts_with("libgpib.") || find("gpib_error_string");
}

GpibLibrary Found(const std::string& name, GpibLibrary::Resolver find) {
  const bool isLinuxGpib = IsOfLinuxGpib(name, find);
  return {name, {}, std::move(find), isLinuxGpib};
}

}  // namespace

GpibLibrary OpenGpibLibrary(const std::string& wanted) {
  if (!wanted.empty()) {
    Loaded loaded = Load(wanted);
    if (loaded.Find) return Found(wanted, std::move(loaded.Find));
    return {{}, "The GPIB library " + wanted + " can't be loaded: " + loaded.Fault, {}, false};
  }
  std::string looked;
  for (const char* const name : kKnown) {
    Loaded loaded = Load(name);
    if (loaded.Find) return Found(name, std::move(loaded.Find));
    looked += (looked.empty() ? "" : ", ") + std::string(name);
  }
  return {{}, "There is no GPIB library on this computer (" + looked + "). " + kInstall, {}, false};
}

std::string BoardAdvice(const std::string& device, const std::vector<std::string>& configurations) {
  const auto exists = [](const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
  };
  if (!exists(device))
    return "There is no " + device + ": the board's kernel driver is not loaded, or the board is not plugged in.";
#ifndef _WIN32
  if (access(device.c_str(), R_OK | W_OK) != 0)
    return "This user may not use " + device + ": join the group that owns it (often gpib), and log in again.";
#endif
  if (std::none_of(configurations.begin(), configurations.end(), exists))
    return "There is no " + configurations.front() + ": it names the board; then run gpib_config.";
  return {};
}

}  // namespace hylden
