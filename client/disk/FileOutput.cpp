#include "client/disk/FileOutput.h"

#include <cerrno>
#include <filesystem>
#include <vector>

#include "client/base/Error.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/Descriptors.h"
#include "platform/FileSystem.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

bool isDevice(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(pathOf(path), error);
  return fs::is_character_file(status) || fs::is_fifo(status) || fs::is_socket(status);
}

// Without a mode, the permissions of the file that is replaced.
void givePermissions(const std::string& temporary, const std::string& path, std::optional<unsigned int> mode) {
  std::error_code error;
  const fs::perms permissions = mode ? fs::perms{*mode} : fs::status(pathOf(path), error).permissions();
  if (!error && permissions != fs::perms::unknown) fs::permissions(pathOf(temporary), permissions, error);
}

void giveName(const std::string& temporary, const std::string& path, Existing existing) {
  if (existing == Existing::kReplace) {
    std::error_code error;
    fs::rename(pathOf(temporary), pathOf(path), error);
    if (error && !kReplacesOpenFiles && fs::exists(pathOf(path))) {
      throw Error(kBusy, "cannot replace {}: {}; close the program that has it open and try again", path,
                  error.message());
    }
    if (error) throw systemFailure("cannot replace " + path, error);
  } else if (!tovr::renameWithoutReplacing(temporary, path)) {
    if (errno == EEXIST) refuseExisting(path, existing);
    throw systemFailure("cannot move the new file to " + path);
  }
}

// Gives the complete file `temporary` its name, on the same file system, and flushes the name to the disk. After an
// interrupt nothing is moved; a later one no longer counts. Throws Error; `path` is untouched then.
void moveIntoPlace(const std::string& temporary, const std::string& path, Existing existing,
                   std::optional<unsigned int> mode) {
  const DeferredInterrupt interrupt;
  givePermissions(temporary, path, mode);
  interrupt.check();
  giveName(temporary, path, existing);
  noteCompletion();
  flushFolder(folderOf(path));  // if that fails, the file has its name nevertheless
}

// "1.6 MB"
std::string sizeText(double bytes) {
  if (bytes >= 1e9) return fmt::format("{:.1f} GB", bytes / 1e9);
  return bytes >= 1e6 ? fmt::format("{:.1f} MB", bytes / 1e6) : fmt::format("{:.1f} kB", bytes / 1e3);
}

}  // namespace

std::string followedLink(const std::string& path) {
  std::error_code error;
  const fs::path target = fs::canonical(pathOf(path), error);
  return error ? path : textOf(target);
}

void requireOwnName(const std::string& path) {
  if (path != "-" && descriptorNamed(path) < 0) return;
  throw Error(kInvalid, "this command does not write to standard output: give a name");
}

void refuseExisting(const std::string& path, Existing existing) {
  Error error(kFileProblem, "{} exists already and was not touched: give another name", path);
  if (existing == Existing::kRefuse) error.suggest(Remedy::kOverwrite);
  throw error;
}

void requireReplaceable(const std::string& path, Existing existing) {
  requireNoCompanion(path);
  std::error_code error;
  const fs::file_status status = fs::status(pathOf(path), error);
  if (fs::is_directory(status)) throw Error(kFileProblem, "{} is a folder: give a file name", path);
  if (!fs::exists(status)) return;
  if (existing != Existing::kReplace) refuseExisting(path, existing);
  constexpr fs::perms kWritable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((status.permissions() & kWritable) == fs::perms::none) {
    throw Error(kFileProblem, "{} is read-only and was not touched: make it writable, or give another name", path);
  }
}

FileOutput::FileOutput(const std::string& path, Existing existing, unsigned int mode, Flushing flushing)
    : path_(followedLink(path)),
      existing_(existing),
      mode_(mode),
      flushing_(flushing),
      direct_(descriptorNamed(path) >= 0 || isDevice(path_)) {
  if (direct_) {
    const int descriptor = descriptorNamed(path);
    file_ = descriptor >= 0 ? duplicateAsStream(descriptor) : FileHandle(std::fopen(path_.c_str(), "wb"));
  } else if (flushing_ == Flushing::kByFolder) {
    file_ = createNew(path_);
  } else {
    requireReplaceable(path_, existing);
    place_.emplace(path_);
    file_ = createNew(place_->path());
  }
  if (file_ == nullptr) fail("create");
}

void FileOutput::requireRoom(double bytes) const {
  std::error_code error;
  const fs::space_info space = fs::space(pathOf(folderOf(path_)), error);
  if (error || direct_ || bytes <= static_cast<double>(space.available)) return;
  throw Error(kNoSpace, "{} would take {}, and the disk has room for {}", path_, sizeText(bytes),
              sizeText(static_cast<double>(space.available)))
      .suggest(Remedy::kForce);
}

void FileOutput::write(const void* bytes, std::size_t size) {
  if (size != 0 && std::fwrite(bytes, 1, size, file_.get()) != size) fail("write");
}

void FileOutput::commit() {
  if (place_ && !flushToDisk(file_.get())) fail("write");
  if (std::fclose(file_.release()) != 0) fail("write");
  if (direct_) return;
  if (!place_) return givePermissions(path_, path_, mode_);
  moveIntoPlace(place_->path(), path_, existing_, mode_);
  place_.reset();
}

void FileOutput::fail(const std::string& action) const {
  throw systemFailure(fmt::format("cannot {} {}", action, path_));
}

namespace {

// The path of the file that is to appear.
std::string requirePlace(const std::string& finished, Existing existing) {
  requireOwnName(finished);
  std::string path = followedLink(finished);
  requireReplaceable(path, existing);
  std::error_code error;
  const std::string folder = folderOf(path);
  if (!fs::is_directory(pathOf(folder), error)) throw Error(kFileProblem, "there is no folder {}", folder);
  return path;
}

std::vector<std::string> companionsOf(const std::string& path, Writer writer) {
  if (writer == Writer::kEncryptionService) return {path + ".temp"};
  std::vector<std::string> companions;
  for (const char* suffix : kCompanionSuffixes) companions.push_back(path + suffix);
  return companions;
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::string& finished, Existing existing, Writer writer,
                               std::optional<unsigned int> mode)
    : finished_(requirePlace(finished, existing)),
      existing_(existing),
      mode_(mode),
      writer_(writer),
      place_(finished_) {
  for (const std::string& companion : companionsOf(path(), writer)) {
    companionsRemoved_.emplace_back(absolutePath(companion));
  }
}

void UnfinishedFile::flush() {
  const FileHandle file(std::fopen(path().c_str(), "r+b"));
  if (file == nullptr || !flushToDisk(file.get())) {
    throw systemFailure("cannot write the new file to the disk");
  }
}

void UnfinishedFile::finish() {
  flush();
  const DatabaseLock lock(writer_ == Writer::kEngine ? finished_ : "");
  takeName();
}

void UnfinishedFile::takeName() {
  if (writer_ == Writer::kEngine) removeIdleCompanions(finished_);
  moveIntoPlace(path(), finished_, existing_, mode_);
}

}  // namespace tovrdb
