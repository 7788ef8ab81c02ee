#include "host/PluginLibrary.h"

#include <map>
#include <mutex>
#include <stdexcept>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>
#endif

namespace tovrhost {
namespace {

#if defined(_WIN32)

void* load(const std::string& path) { return LoadLibraryA(path.c_str()); }

void unload(void* handle) { FreeLibrary(static_cast<HMODULE>(handle)); }

void* symbol(void* handle, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

std::string loadError() { return "system error " + std::to_string(GetLastError()); }

long processNumber() { return static_cast<long>(GetCurrentProcessId()); }

#else

void* load(const std::string& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void unload(void* handle) { dlclose(handle); }

void* symbol(void* handle, const char* name) { return dlsym(handle, name); }

std::string loadError() { return dlerror(); }

long processNumber() { return static_cast<long>(getpid()); }

#endif

template <class Function>
Function function(void* handle, const char* name) {
  auto found = reinterpret_cast<Function>(symbol(handle, name));
  if (found == nullptr) throw std::runtime_error(std::string("the library does not export ") + name);
  return found;
}

// Which loaded libraries have a host, and since which process: a forked one has none yet.
struct HostedLibraries {
  std::mutex mutex;
  std::map<const tovr::PluginInfo*, long> processes;
};

HostedLibraries& hostedLibraries() {
  static HostedLibraries libraries;
  return libraries;
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path) : handle_(load(path)) {
  if (handle_ == nullptr) throw std::runtime_error("cannot load the plug-in " + path + ": " + loadError());
  try {
    pluginit_ = function<tovr::PluginitFunction>(handle_, "pluginit");
    info_ = static_cast<const tovr::PluginInfo*>(function<tovr::PluginfoFunction>(handle_, "pluginfo")());
  } catch (...) {
    unload(handle_);
    throw;
  }
}

PluginLibrary::~PluginLibrary() { unload(handle_); }

const tovr::ClassInfo* PluginLibrary::findClass(const std::string& className) const {
  for (tovr::ClassInfo* const* entry = info_->classes; *entry != nullptr; ++entry) {
    if (className == (*entry)->name) return *entry;
  }
  return nullptr;
}

void PluginLibrary::init(tovr::IPluginHost* host) const {
  HostedLibraries& hosted = hostedLibraries();
  const std::lock_guard<std::mutex> lock(hosted.mutex);
  if (host == nullptr) {
    hosted.processes.erase(info_);
  } else {
    long& process = hosted.processes[info_];
    if (process == processNumber()) {
      throw std::logic_error(
          "the plug-in already has a host in this process; destroy that one first, or load another copy");
    }
    process = processNumber();
  }
  pluginit_(host);
}

}  // namespace tovrhost
