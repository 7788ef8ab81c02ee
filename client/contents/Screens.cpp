#include "client/contents/Screens.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>

#include "client/base/Text.h"
#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

bool isBlank(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

// Letters of two UTF-8 bytes, in ranges of capitals whose small letters lie `distance` code points on.
constexpr struct {
  unsigned int first;
  unsigned int last;
  unsigned int distance;
} kCapitals[] = {{0xC0, 0xD6, 32}, {0xD8, 0xDE, 32}, {0x391, 0x3A9, 32}, {0x400, 0x40F, 80}, {0x410, 0x42F, 32}};

unsigned int smallLetter(unsigned int letter) {
  for (const auto& range : kCapitals) {
    if (letter >= range.first && letter <= range.last) return letter + range.distance;
  }
  return letter;
}

unsigned int byteAt(const std::string& text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

}  // namespace

std::vector<StoredScreen> storedScreens(Session& session) {
  const auto all = session.host().makeRecord<tovr::ScreenInfoDataResult>();
  session.require(queryLibrary(session, *all));
  std::vector<StoredScreen> screens;
  for (const auto& screen : all->screens) screens.push_back({screen.id, screen.screenname, rectOf(screen)});
  return screens;
}

std::vector<StoredScreen> readableScreens(Session& session) {
  constexpr char kReadable[] =
      "select id, screenname, left, top, right, bottom from Screen_Info where typeof(left) = 'integer'"
      " and typeof(top) = 'integer' and typeof(right) = 'integer' and typeof(bottom) = 'integer' order by id";
  return collectRows<StoredScreen>(session.connection(), kReadable, [](tovr::IDBOperate& connection) {
    const Rect rect{connection.column_int(2), connection.column_int(3), connection.column_int(4),
                    connection.column_int(5)};
    return StoredScreen{columnNumber(connection, 0), columnText(connection, 1), rect};
  });
}

std::vector<StoredScreen>::const_iterator findScreen(const std::vector<StoredScreen>& screens,
                                                     const std::string& name) {
  return std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& screen) { return screen.name == name; });
}

const StoredScreen& screenNamed(const std::vector<StoredScreen>& screens, const std::string& name) {
  const auto found = findScreen(screens, name);
  if (found != screens.end()) return *found;
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(screen.name);
  throw libraryError(tovr::kNoSuchScreenName, fmt::format("asked for {}; screens: {}", name, shortList(names)));
}

std::string foldedName(const std::string& name) {
  constexpr unsigned int kNoBreakSpace = 0xA0;
  std::string folded;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const unsigned int lead = byteAt(name, i);
    const unsigned int next = byteAt(name, i + 1);
    if (isBlank(name[i])) continue;
    if (lead >= 0xC2 && lead <= 0xDF && (next & 0xC0U) == 0x80U) {
      const unsigned int letter = smallLetter((lead & 0x1FU) << 6U | (next & 0x3FU));
      ++i;
      if (letter == kNoBreakSpace) continue;
      folded += static_cast<char>(0xC0U | letter >> 6U);
      folded += static_cast<char>(0x80U | (letter & 0x3FU));
    } else {
      folded += lead >= 'A' && lead <= 'Z' ? static_cast<char>(lead + ('a' - 'A')) : name[i];
    }
  }
  return folded;
}

void ScreenNames::add(const std::string& name) {
  names_.insert(name);
  byFold_.emplace(foldedName(name), name);
}

std::string ScreenNames::doubt(const std::string& name) const {
  const auto alike = byFold_.find(foldedName(name));
  if (alike != byFold_.end()) return "differs from the screen '" + alike->second + "' only in case or blanks";
  if (name.empty() || (!isBlank(name.front()) && !isBlank(name.back()))) return {};
  return "begins or ends with a blank";
}

}  // namespace tovrdb
