#include "tool/io/ByteOutput.h"

#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/Platform.h"

namespace tovrdb::tool {

ByteOutput::ByteOutput(StandardOutput& standard, const OutputOptions& options, const std::string& source)
    : standard_(standard), force_(options.force) {
  std::error_code error;
  if (std::filesystem::equivalent(pathOf(options.path), pathOf(source), error)) {
    throw Error(kInvalid, "the output would replace {}, from which it is made: give another name", source);
  }
  if (options.path == "-" || descriptorNamed(options.path) == kStandardOutput) {
    standard_.refuseTerminal();
  } else {
    file_.emplace(options.path, options.force ? Existing::kReplace : Existing::kRefuse, options.mode);
  }
}

void ByteOutput::requireRoom(double bytes) const {
  if (file_ && !force_) file_->requireRoom(bytes);
}

void ByteOutput::write(const void* bytes, std::size_t size) {
  if (file_) {
    file_->write(bytes, size);
  } else {
    standard_.write(bytes, size);
  }
}

void ByteOutput::commit() {
  if (file_) file_->commit();
}

}  // namespace tovrdb::tool
