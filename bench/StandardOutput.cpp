#include "StandardOutput.h"

#include <fcntl.h>
#include <unistd.h>

namespace tovrbench {

StandardOutput::StandardOutput() : stream_(fdopen(dup(STDOUT_FILENO), "w")) {
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

StandardOutput::~StandardOutput() { std::fclose(stream_); }

}  // namespace tovrbench
