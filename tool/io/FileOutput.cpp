#include "tool/io/FileOutput.h"

#include <fmt/core.h>

#include <cerrno>
#include <filesystem>

#include "platform/FileSystem.h"
#include "tool/system/Paths.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

bool isDevice(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(pathOf(path), error);
  return fs::is_character_file(status) || fs::is_fifo(status) || fs::is_socket(status);
}

}  // namespace

std::string followedLink(const std::string& path) {
  std::error_code error;
  const fs::path target = fs::canonical(pathOf(path), error);
  return error ? path : textOf(target);
}

void refuseExisting(const std::string& path) {
  throw ToolError(kFileProblem, "{} exists already and was not touched: give another name, or --force to replace",
                  path);
}

void moveIntoPlace(const std::string& temporary, const std::string& path, Existing existing) {
  if (existing == Existing::kReplace) {
    std::error_code error;
    const fs::perms permissions = fs::status(pathOf(path), error).permissions();
    if (!error && permissions != fs::perms::unknown) fs::permissions(pathOf(temporary), permissions, error);
    fs::rename(pathOf(temporary), pathOf(path), error);
    if (error) throw ToolError(kFileProblem, "cannot replace {}: {}", path, error.message());
  } else if (!tovr::renameWithoutReplacing(temporary, path)) {
    if (errno == EEXIST) refuseExisting(path);
    throw ToolError(kFileProblem, "cannot move the new file to {}: {}", path, systemError());
  }
}

std::string temporaryNameBeside(const std::string& path) {
  std::string name = fmt::format("{}.unfinished-{}", path, processNumber());
  std::error_code error;
  while (fs::exists(fs::symlink_status(pathOf(name), error))) name += "x";
  return name;
}

FileOutput::FileOutput(const std::string& path, Existing existing)
    : path_(followedLink(path)), existing_(existing), device_(isDevice(path_)) {
  std::error_code error;
  const fs::file_status status = fs::status(pathOf(path_), error);
  if (fs::is_directory(status)) throw ToolError(kFileProblem, "{} is a folder: give a file name", path);
  if (device_) {
    file_.reset(std::fopen(path_.c_str(), "wb"));
  } else {
    if (fs::exists(status) && existing == Existing::kRefuse) refuseExisting(path);
    const std::string name = temporaryNameBeside(path_);
    removed_.emplace(name);
    file_ = createNew(name);
    if (file_ != nullptr) temporary_ = name;
  }
  if (file_ == nullptr) fail("create");
}

FileOutput::~FileOutput() {
  file_.reset();
  if (!temporary_.empty()) std::remove(temporary_.c_str());
}

void FileOutput::write(const void* bytes, std::size_t size) {
  if (size != 0 && std::fwrite(bytes, 1, size, file_.get()) != size) fail("write");
}

void FileOutput::commit() {
  if (device_ ? std::fflush(file_.get()) != 0 : !flushToDisk(file_.get())) fail("write");
  if (std::fclose(file_.release()) != 0) fail("write");
  if (device_) return;
  moveIntoPlace(temporary_, path_, existing_);
  temporary_.clear();
}

void FileOutput::fail(const std::string& action) const {
  throw ToolError(kFileProblem, "cannot {} {}: {}", action, path_, systemError());
}

}  // namespace tovrtool
