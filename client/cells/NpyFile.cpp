#include "client/cells/NpyFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <stdexcept>

#include "client/base/Error.h"

namespace tovrdb {
namespace {

constexpr char kMagic[] = "\x93NUMPY";
constexpr std::size_t kPrologue = 8;         // the magic string and the two numbers of the version
constexpr std::size_t kMostHeader = 4096;    // NumPy's own are below 200
constexpr std::size_t kMostDimensions = 32;  // NumPy's own limit
constexpr std::size_t kAlignment = 64;       // of the numbers in the file

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
  throw Error(kFileProblem, name + " cannot be used: " + reason);
}

struct Header {
  std::string descr;
  bool fortranOrder = false;
  std::vector<std::size_t> shape;
};

// Reads the dictionary as Python writes it: {'descr': '<u2', 'fortran_order': False, 'shape': (4, 8), }. Its three keys
// stand in any order, each once; spaces may stand between the parts, and nothing but spaces before the closing newline.
// Every function throws std::invalid_argument, which says what is wrong at position(), for anything else.
class HeaderParser {
 public:
  explicit HeaderParser(const std::string& text)
      : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

  std::size_t position() const { return static_cast<std::size_t>(at_ - begin_); }

  Header parse() {
    expect('{');
    while (!accept('}')) {
      const std::string key = parseText();
      if (!keys_.insert(key).second) throw std::invalid_argument("the key '" + key + "' is there twice");
      expect(':');
      parseValue(key);
      if (!accept(',') && !next('}')) throw std::invalid_argument("',' or '}' is expected");
    }
    expect('\n');
    if (at_ != end_ || keys_.size() != 3)
      throw std::invalid_argument("exactly the keys 'descr', 'fortran_order' and 'shape' are expected");
    return header_;
  }

 private:
  void parseValue(const std::string& key) {
    if (key == "descr") {
      header_.descr = parseText();
      if (header_.descr.empty()) throw std::invalid_argument("'descr' is empty");
    } else if (key == "fortran_order") {
      header_.fortranOrder = parseBool();
    } else if (key == "shape") {
      parseShape();
    } else {
      throw std::invalid_argument("the key '" + key + "' is unknown");
    }
  }

  std::string parseText() {
    const char quote = next('"') ? '"' : '\'';
    expect(quote);
    const char* const close = std::find(at_, end_, quote);
    if (close == end_) throw std::invalid_argument("a quoted text does not end");
    std::string text(at_, close);
    at_ = close + 1;
    return text;
  }

  bool parseBool() {
    for (const bool value : {false, true}) {
      const std::string word = value ? "True" : "False";
      if (next(word[0]) && static_cast<std::size_t>(end_ - at_) >= word.size() &&
          std::equal(word.begin(), word.end(), at_)) {
        at_ += word.size();
        return value;
      }
    }
    throw std::invalid_argument("'fortran_order' is neither True nor False");
  }

  void parseShape() {
    expect('(');
    while (!accept(')')) {
      std::size_t extent = 0;
      skipSpaces();
      const auto parsed = std::from_chars(at_, end_, extent);
      if (parsed.ec != std::errc()) throw std::invalid_argument("'shape' does not consist of whole numbers");
      at_ = parsed.ptr;
      accept('L');  // Python 2's mark of a long number
      header_.shape.push_back(extent);
      if (!accept(',') && !next(')')) throw std::invalid_argument("',' or ')' is expected");
    }
  }

  void skipSpaces() {
    while (at_ != end_ && *at_ == ' ') ++at_;
  }
  // Whether `character` follows, after spaces.
  bool next(char character) {
    skipSpaces();
    return at_ != end_ && *at_ == character;
  }
  bool accept(char character) {
    const bool follows = next(character);
    if (follows) ++at_;
    return follows;
  }
  void expect(char character) {
    if (!accept(character)) {
      const std::string sign(1, character);
      throw std::invalid_argument((character == '\n'   ? "a newline at the end"
                                   : character == '\'' ? "a quoted text"
                                                       : "'" + sign + "'") +
                                  std::string(" is expected"));
    }
  }

  const char* begin_;
  const char* at_;
  const char* end_;
  Header header_;
  std::set<std::string> keys_;
};

// Where the header's text lies. Its length precedes it, in two bytes in version 1 and four in versions 2 and 3, which
// differ only in the text's encoding.
struct HeaderPlace {
  std::size_t offset;
  std::size_t length;
};

HeaderPlace placeHeader(const std::vector<unsigned char>& file, const std::string& name) {
  const std::string magic = kMagic;
  if (file.size() < kPrologue + 2 ||
      !std::equal(magic.begin(), magic.end(), file.begin(),
                  [](char expected, unsigned char found) { return static_cast<unsigned char>(expected) == found; })) {
    throw Error(kFileProblem, "{}: it is not a .npy file", name).suggest(Remedy::kReadRaw);
  }
  const unsigned int version = file[6];
  if (version < 1 || version > 3) refuse(name, fmt::format("its .npy version {} is unknown", version));
  const std::size_t lengthBytes = version == 1 ? 2 : 4;
  if (file.size() < kPrologue + lengthBytes) refuse(name, "it is truncated inside its header");
  std::size_t length = 0;
  for (std::size_t i = lengthBytes; i-- > 0;) length = length << 8 | file[kPrologue + i];
  if (length > kMostHeader) refuse(name, fmt::format("its header of {} bytes is too long", length));
  const HeaderPlace place{kPrologue + lengthBytes, length};
  if (place.length > file.size() - place.offset) refuse(name, "it is truncated inside its header");
  return place;
}

Header parseHeader(const std::string& text, const std::string& name) {
  constexpr std::size_t kShown = 40;
  HeaderParser parser(text);
  Header header;
  try {
    header = parser.parse();
  } catch (const std::invalid_argument& error) {
    refuse(name, fmt::format("its .npy header is damaged: {} at byte {}, before \"{}\"", error.what(),
                             parser.position() + 1, text.substr(parser.position(), kShown)));
  }
  if (header.fortranOrder) {
    refuse(name, "it is in Fortran order; save it in C order, as with numpy.ascontiguousarray");
  }
  if (header.descr[0] == '>') {
    refuse(name, fmt::format("its numbers are big-endian ({}); save them little-endian", header.descr));
  }
  if (header.shape.size() > kMostDimensions) refuse(name, "it has too many dimensions");
  return header;
}

// The bytes that shape and type need; a number above `limit` if they exceed it.
std::size_t bytesNeeded(const NpyArray& array, std::size_t limit) {
  if (std::find(array.shape.begin(), array.shape.end(), std::size_t{0}) != array.shape.end()) return 0;
  std::size_t bytes = traitsOf(array.dtype).bytes;
  for (const std::size_t extent : array.shape) {
    if (extent > limit / bytes) return limit + 1;
    bytes *= extent;
  }
  return bytes;
}

// The same, unlimited: a header may ask for more than any integer holds.
std::string neededText(const NpyArray& array) {
  double bytes = static_cast<double>(traitsOf(array.dtype).bytes);
  for (const std::size_t extent : array.shape) bytes *= static_cast<double>(extent);
  return fmt::format("{:.15g}", bytes);
}

}  // namespace

NpyArray parseNpy(std::vector<unsigned char> file, const std::string& name) {
  const HeaderPlace place = placeHeader(file, name);
  const auto headerBegin = file.begin() + static_cast<std::ptrdiff_t>(place.offset);
  const auto payloadBegin = headerBegin + static_cast<std::ptrdiff_t>(place.length);
  Header header = parseHeader(std::string(headerBegin, payloadBegin), name);
  NpyArray array;
  array.shape = std::move(header.shape);
  try {
    array.dtype = parseNumberType(header.descr);
  } catch (const std::invalid_argument& error) {
    refuse(name, error.what());
  }
  const auto present = static_cast<std::size_t>(file.end() - payloadBegin);
  const std::size_t needed = bytesNeeded(array, file.size());
  if (needed != present) {
    refuse(name, fmt::format("it is {}: shape {} of {} needs {} bytes of numbers, and the file has {}",
                             needed > present ? "truncated" : "too long", shapeText(array.shape), nameOf(array.dtype),
                             neededText(array), present));
  }
  file.erase(file.begin(), payloadBegin);
  array.bytes = std::move(file);
  return array;
}

std::string npyHeader(NumberType dtype, const std::vector<std::size_t>& shape) {
  std::string text = fmt::format("{{'descr': '{}', 'fortran_order': False, 'shape': ({}{}), }}", traitsOf(dtype).descr,
                                 fmt::join(shape, ", "), shape.size() == 1 ? "," : "");
  const std::size_t before = kPrologue + 2;
  const std::size_t unaligned = (before + text.size() + 1) % kAlignment;
  text.append(unaligned == 0 ? 0 : kAlignment - unaligned, ' ').push_back('\n');
  std::string header = kMagic;
  header += {'\x01', '\x00', static_cast<char>(text.size() & 0xFF), static_cast<char>(text.size() >> 8)};
  return header + text;
}

std::string shapeText(const std::vector<std::size_t>& shape) { return fmt::format("({})", fmt::join(shape, ", ")); }

}  // namespace tovrdb
