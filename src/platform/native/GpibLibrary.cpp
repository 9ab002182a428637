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
constexpr const char* kNotThere = "error 126";

std::string InWords(const std::string&, const std::string& fault) {
  constexpr const char* kBadImage = "error 193";
  return fault == kBadImage ? "it is no library, or one for another kind of processor" : fault;
}

Loaded Load(const std::string& name) {
  const HMODULE library = LoadLibraryA(name.c_str());
  if (!library) return {{}, "error " + std::to_string(GetLastError())};
  return {[library](const char* function) { return reinterpret_cast<void*>(GetProcAddress(library, function)); }, {}};
}

#else

constexpr const char* kKnown[] = {"libgpib.so.0", "libni4882.so.1", "libgpibapi.so"};
constexpr const char* kInstall = "Install the distribution's GPIB package, or the board's own driver.";
constexpr const char* kNotThere = ": cannot open shared object file: No such file";

/// What the loader's words mean to somebody who has installed a driver; its own words behind it.
std::string InWords(const std::string& name, const std::string& fault) {
  const auto says = [&](const char* words) { return fault.find(words) != std::string::npos; };
  std::error_code ignored;
  // The loader passes over another processor's file as if it were not there.
  const bool passedOver = std::filesystem::exists(name, ignored) && fault.starts_with(name + kNotThere);
  if (passedOver || says("wrong ELF class")) return "it is made for another kind of processor (" + fault + ")";
  if (says("ELF header") || says("file too short")) return "the file is no library (" + fault + ")";
  return fault;
}

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

std::string NotLoaded(const std::string& name, const std::string& fault) {
  return "The GPIB library " + name + " can't be loaded: " + InWords(name, fault);
}

/// The loader found no such file, rather than one that it can't use.
bool IsAbsent(const std::string& name, const std::string& fault) {
  return fault == kNotThere || fault.starts_with(name + kNotThere);
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
    return {{}, NotLoaded(wanted, loaded.Fault), {}, false};
  }
  std::string looked, unusable;
  for (const char* const name : kKnown) {
    Loaded loaded = Load(name);
    if (loaded.Find) return Found(name, std::move(loaded.Find));
    looked += (looked.empty() ? "" : ", ") + std::string(name);
    if (unusable.empty() && !IsAbsent(name, loaded.Fault)) unusable = NotLoaded(name, loaded.Fault);
  }
  if (!unusable.empty()) return {{}, unusable, {}, false};
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
