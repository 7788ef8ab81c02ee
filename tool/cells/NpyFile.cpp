#include "tool/cells/NpyFile.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <xtensor/xnpy.hpp>

#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr std::size_t kPrologue = 8;        // the magic string and the version
constexpr std::size_t kMaxHeader = 4096;    // NumPy's own are below 200; xtensor matches them with a recursive regex
constexpr std::size_t kMaxDimensions = 32;  // NumPy's own limit

struct NamedDtype {
  const char* name;
  const char* descr;
  std::size_t itemSize;
};

constexpr NamedDtype kDtypes[] = {
    {"uint8", "|u1", 1},   {"int8", "|i1", 1},    {"uint16", "<u2", 2},  {"int16", "<i2", 2},
    {"uint32", "<u4", 4},  {"int32", "<i4", 4},   {"uint64", "<u8", 8},  {"int64", "<i8", 8},
    {"float16", "<f2", 2}, {"float32", "<f4", 4}, {"float64", "<f8", 8},
};

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
  throw ToolError(kFileProblem, name + " cannot be used: " + reason);
}

// Where the header's text lies: the length before it takes two bytes in version 1 and four in versions 2 and 3.
struct HeaderPlace {
  std::size_t offset;
  std::size_t length;
};

HeaderPlace placeHeader(const std::vector<unsigned char>& file, const std::string& name) {
  if (file.size() < kPrologue + 2 ||
      std::memcmp(file.data(), xt::detail::magic_string, xt::detail::magic_string_length) != 0) {
    refuse(name, "it is not a .npy file (give raw bytes with --raw)");
  }
  const unsigned int version = file[6];
  if (version < 1 || version > 3) refuse(name, "its .npy version " + std::to_string(version) + " is unknown");
  const std::size_t lengthBytes = version == 1 ? 2 : 4;
  if (file.size() < kPrologue + lengthBytes) refuse(name, "it is truncated inside its header");
  std::size_t length = 0;
  for (std::size_t i = lengthBytes; i-- > 0;) length = length << 8 | file[kPrologue + i];
  if (length > kMaxHeader) refuse(name, "its header of " + std::to_string(length) + " bytes is too long");
  const HeaderPlace place{kPrologue + lengthBytes, length};
  if (place.length > file.size() - place.offset) refuse(name, "it is truncated inside its header");
  return place;
}

// xtensor's parser takes the last character of texts that may be empty, so the frame is checked before.
bool hasFrame(const std::string& header) {
  std::string dense = header;
  dense.erase(std::remove(dense.begin(), dense.end(), ' '), dense.end());
  return dense.size() > 2 && dense.front() == '{' && dense.back() == '\n' &&
         dense.find("'shape':(") != std::string::npos;
}

void parseHeader(const std::string& header, NpyArray& array, const std::string& name) {
  bool fortran = false;
  try {
    if (!hasFrame(header)) throw std::runtime_error("no shape");
    xt::detail::parse_header(header, array.dtype.descr, &fortran, array.shape);
  } catch (const std::runtime_error& error) {
    refuse(name, std::string("its header is not understood (") + error.what() + ")");
  }
  if (fortran) refuse(name, "it is in Fortran order; save it in C order, as with numpy.ascontiguousarray");
  if (array.dtype.descr[0] == '>') {
    refuse(name, "its numbers are big-endian (" + array.dtype.descr + "); save them little-endian");
  }
  if (array.shape.size() > kMaxDimensions) refuse(name, "it has too many dimensions");
}

// Bytes that shape and type ask for, or more than `limit` when that is exceeded.
std::size_t bytesNeeded(const NpyArray& array, std::size_t limit) {
  if (std::find(array.shape.begin(), array.shape.end(), std::size_t{0}) != array.shape.end()) return 0;
  std::size_t bytes = array.dtype.itemSize;
  for (const std::size_t extent : array.shape) {
    if (extent > limit / bytes) return limit + 1;
    bytes *= extent;
  }
  return bytes;
}

}  // namespace

Dtype parseDtype(const std::string& name) {
  std::string names;
  for (const NamedDtype& known : kDtypes) {
    const std::string descr = known.descr;
    const bool unordered = known.itemSize == 1 && name == "<" + descr.substr(1);  // one byte has no order
    if (name == known.name || name == descr || unordered) return {known.descr, known.itemSize};
    names += (names.empty() ? "" : ", ") + std::string(known.name);
  }
  throw std::invalid_argument("the type " + name + " is not one of " + names);
}

std::vector<std::string> dtypeNames() {
  std::vector<std::string> names;
  for (const NamedDtype& known : kDtypes) names.emplace_back(known.name);
  return names;
}

NpyArray parseNpy(std::vector<unsigned char> file, const std::string& name) {
  const HeaderPlace place = placeHeader(file, name);
  const auto headerBegin = file.begin() + static_cast<std::ptrdiff_t>(place.offset);
  const auto payloadBegin = headerBegin + static_cast<std::ptrdiff_t>(place.length);
  NpyArray array;
  parseHeader(std::string(headerBegin, payloadBegin), array, name);
  try {
    array.dtype = parseDtype(array.dtype.descr);
  } catch (const std::invalid_argument& error) {
    refuse(name, error.what());
  }
  const auto present = static_cast<std::size_t>(file.end() - payloadBegin);
  const std::size_t needed = bytesNeeded(array, file.size());
  if (needed != present) {
    refuse(name, std::string(needed > present ? "it is truncated: " : "it is too long: ") + "an array of shape " +
                     shapeText(array.shape) + " and type " + array.dtype.descr + " does not take " +
                     std::to_string(present) + " bytes");
  }
  file.erase(file.begin(), payloadBegin);
  array.bytes = std::move(file);
  return array;
}

std::string npyHeader(const Dtype& dtype, const std::vector<std::size_t>& shape) {
  std::ostringstream text;
  xt::detail::write_header(text, dtype.descr, false, shape);
  return text.str();
}

std::string shapeText(const std::vector<std::size_t>& shape) {
  std::string text;
  for (const std::size_t extent : shape) text += (text.empty() ? "(" : ", ") + std::to_string(extent);
  return text.empty() ? "()" : text + ")";
}

}  // namespace tovrtool
