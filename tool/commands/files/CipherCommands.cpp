#include <algorithm>
#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/FileInput.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"
#include "client/session/Session.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKeyLength = 8;
constexpr std::uintmax_t kCipherBlock = 8;

struct Options {
  std::string input;
  std::string output;
  std::string keyFile;
  std::string vectorFile;
  bool force = false;
  unsigned int mode = kOwnerOnlyFile;  // of a decrypted file
};

struct Keys {
  std::string key;
  std::string vector;
};

void requireLength(const std::string& key, const char* what) {
  if (key.size() == kKeyLength) return;
  throw Error(kKeyProblem, "{} has {} characters, not 8", what, key.size());
}

Keys readKeys(const Options& options, KeyUse use) {
  Keys keys;
  keys.key = readKey(options.keyFile, use, kCipherKey);
  requireLength(keys.key, "the cipher key");
  keys.vector = options.vectorFile.empty() ? keys.key : readKeyFile(options.vectorFile);
  requireLength(keys.vector, "the initialisation vector");
  return keys;
}

// Which bytes end a text: deciphering cuts a piece of 512 bytes at its first zero byte, and where files have a text
// mode Ctrl-Z is the end of the file, and CR LF is read as one byte and written as two again.
#if defined(_WIN32)
bool endsText(unsigned char byte) { return byte == 0 || byte == 0x1A; }

std::uintmax_t bytesRead(const std::vector<unsigned char>& text) {
  std::uintmax_t pairs = 0;
  for (std::size_t i = 1; i < text.size(); ++i) pairs += text[i - 1] == '\r' && text[i] == '\n' ? 1U : 0U;
  return text.size() - pairs;
}
#else
bool endsText(unsigned char byte) { return byte == 0; }

std::uintmax_t bytesRead(const std::vector<unsigned char>& text) { return text.size(); }
#endif

// The number of bytes that the service will read from the file: all, if it is a text.
std::uintmax_t requireText(const std::string& path) {
  const auto bytes = readWholeFile(path);
  const auto found = std::find_if(bytes.begin(), bytes.end(), endsText);
  if (found != bytes.end()) {
    throw Error(kFileProblem,
                "{} is not a text: its byte {} is {}, and the format, which is made for texts, would lose what "
                "follows. Keep binary data in a database (tovrdb data put)",
                path, found - bytes.begin() + 1, int{*found});
  }
  return bytesRead(bytes);
}

std::uintmax_t sizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(pathOf(path), error);
  return error ? 0 : size;
}

void requireDone(bool done, const std::string& path) {
  std::error_code error;
  if (!done || !fs::exists(pathOf(path), error)) {
    throw Error(kFileProblem,
                "the encryption service could not read the one file or write the other; is the disk full?");
  }
}

void encrypt(Context& context, const Options& options) {
  const Keys keys = readKeys(options, KeyUse::kCreate);
  const std::uintmax_t size = requireText(options.input);
  UnfinishedFile unfinished(options.output, options.force ? Existing::kReplace : Existing::kRefuse,
                            Writer::kEncryptionService);
  const auto host = loadPlugin(context.options.access.plugin);
  requireDone(host->encryption().encryptFile(keys.key, keys.vector, options.input, unfinished.path()),
              unfinished.path());
  if (sizeOf(unfinished.path()) != (size + kCipherBlock - 1) / kCipherBlock * kCipherBlock) {
    throw Error(kFileProblem, "the encrypted file is incomplete; is the disk full?");
  }
  unfinished.finish();
  message("wrote " + options.output);
}

void decrypt(Context& context, const Options& options) {
  const Keys keys = readKeys(options, KeyUse::kOpen);
  const std::uintmax_t size = readWholeFile(options.input).size();
  if (size % kCipherBlock != 0) {
    throw Error(kFileProblem, "{} is not an encrypted file, or truncated: its {} bytes are not a multiple of 8",
                options.input, size);
  }
  UnfinishedFile unfinished(options.output, options.force ? Existing::kReplace : Existing::kRefuse,
                            Writer::kEncryptionService, options.mode);
  const auto host = loadPlugin(context.options.access.plugin);
  requireDone(host->encryption().decryptFile(keys.key, keys.vector, options.input, unfinished.path()),
              unfinished.path());
  // Only the last cipher block of a text is padded with zeros, by less than its length.
  if (sizeOf(unfinished.path()) + kCipherBlock <= size) {
    throw Error(kKeyProblem, "the key or the vector is wrong, or the file never was a text: zero bytes cut it short");
  }
  unfinished.finish();
  message("wrote " + options.output);
}

CommandGroup::Added<Options> addOne(CommandGroup& program, const std::string& name, const std::string& description,
                                    void (*run)(Context&, const Options&)) {
  const auto added = program.add(name, description, &Options::input, run);
  auto& [command, options] = added;
  command.footer(
      R"(The service's format is DES in CBC mode over pieces of 512 bytes, for text files: no header, no checksum. A wrong
key shows only where it yields zero bytes. DES keeps nothing from a determined reader.)");
  command.add_option("IN", options.input, "The file to read")->required();
  command.add_option("OUT", options.output, "The file to write")->required();
  command
      .add_option("--cipher-key-file", options.keyFile,
                  "The key, 8 characters, is this file's first line [TOVRDB_CIPHER_KEY, else a prompt]")
      ->type_name("FILE");
  command.add_option("--iv-file", options.vectorFile, "So is the initialisation vector [the same as the key]")
      ->type_name("FILE");
  command.add_flag("--force", options.force, "Replace the output file if it exists");
  return added;
}

}  // namespace

void addCipherCommands(CommandGroup& program) {
  addOne(program, "encrypt", "Encrypt a text file with the encryption service", encrypt);
  const auto [command, options] = addOne(program, "decrypt", "Decrypt such a file", decrypt);
  addMode(command, options.mode);
}

}  // namespace tovrdb::tool
