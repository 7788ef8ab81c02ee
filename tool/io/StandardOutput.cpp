#include "tool/io/StandardOutput.h"

#include "client/base/Error.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {

StandardOutput::StandardOutput()
    : results_(duplicateAsStream(kStandardOutput)), terminal_(isTerminal(kStandardOutput)) {
  redirectToNull(kStandardOutput);  // also when it is closed: no database file may get its number
}

StandardOutput::~StandardOutput() {
  std::fflush(stdout);  // the library's last lines go where the others went
}

void StandardOutput::logLibraryTo(const std::string& path) {
  std::fflush(stdout);
  if (!redirectToEndOf(path, kStandardOutput)) {
    throw systemFailure("cannot append to the log " + path);
  }
  log_ = path;
}

void StandardOutput::showLibrary() {
  std::fflush(stdout);
  redirectTo(kStandardError, kStandardOutput);
}

void StandardOutput::print(const std::string& text) { write(text.data(), text.size()); }

void StandardOutput::write(const void* bytes, std::size_t size) {
  if (size == 0) return;
  if (results_ == nullptr) throw Error(kFileProblem, "standard output is closed: redirect it to a file");
  if (std::fwrite(bytes, 1, size, results_.get()) != size) {
    throw systemFailure("cannot write the results to standard output");
  }
}

void StandardOutput::refuseTerminal() const {
  if (terminal_) throw Error(kInvalid, "bytes are not for a terminal: redirect standard output or give -o FILE");
}

void StandardOutput::finish() {
  if (results_ != nullptr && std::fflush(results_.get()) != 0) {
    throw systemFailure("cannot write the results to standard output");
  }
  if (std::fflush(stdout) != 0 && !log_.empty()) {
    throw systemFailure(fmt::format("the log {} is incomplete", log_));
  }
}

}  // namespace tovrdb::tool
