// The plug-in library loaded at run time: opened, its two functions found, its descriptor checked.
#pragma once

#include <string>

#include "plugin/IPluginHost.h"
#include "plugin/PluginInfo.h"

namespace tovrhost {

class PluginLibrary {
 public:
  // Loads the library at `path` (a bare file name is searched for as the platform does). Throws std::runtime_error
  // that says what is missing.
  explicit PluginLibrary(const std::string& path);
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;
  // Unloads. REQUIRES: every object that the library made is gone.
  ~PluginLibrary();

  const tovr::PluginInfo& info() const { return *info_; }

  // The record of a class ("cpp.DBManager"), or null.
  const tovr::ClassInfo* findClass(const std::string& className) const;

  // Gives the library its host; null takes it back. A library keeps one host for all of its managers: throws
  // std::logic_error while it has one that a PluginLibrary of this program gave it.
  void init(tovr::IPluginHost* host) const;

 private:
  void* handle_;
  tovr::PluginitFunction pluginit_ = nullptr;
  const tovr::PluginInfo* info_ = nullptr;
};

}  // namespace tovrhost
