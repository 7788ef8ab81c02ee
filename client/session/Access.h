// How the program reaches database files.
#pragma once

#include <functional>
#include <string>

namespace tovrdb {

struct Access {
  std::string plugin;         // the plug-in library; empty: where it usually lies
  unsigned int patience = 5;  // seconds that another program may make this one wait
  bool flushed = true;        // what is committed is on the disk, and survives a power cut
  // Called a few times a second while another program is waited for; ends the waiting by throwing.
  std::function<void()> whileWaiting{};
};

}  // namespace tovrdb
