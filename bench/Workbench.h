// What every measurement works on: a scratch folder, and the library in its host with a file of one big screen.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/PluginHost.h"

namespace tovrbench {

constexpr int kCellBytes = 18;  // a 3x3 matrix of 16-bit numbers
constexpr const char* kKey = "a key for measuring";

struct Rectangle {
  int left;
  int top;
  int right;
  int bottom;
  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
  std::size_t bytes() const { return std::size_t{kCellBytes} * static_cast<unsigned>(width() * height()); }
};

constexpr Rectangle kWholeScreen{0, 0, 1919, 1079};

// Bytes without a pattern that anything on the way could shorten.
std::vector<unsigned char> noise(std::size_t size);

// A folder of its own, gone at the end.
class Scratch {
 public:
  Scratch();
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  std::string file(const std::string& name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

// The library in a host, with an open file of type 0 whose one screen is `screen`.
class StoreUnderTest {
 public:
  StoreUnderTest(const std::string& plugin, const std::string& path, const Rectangle& screen);
  // Always adds an area: each gets a number of its own.
  void insert(const Rectangle& rectangle, std::vector<unsigned char>& cells);
  // The cells of a rectangle, as the manager returns them.
  std::unique_ptr<unsigned char[]> query(const Rectangle& rectangle);
  // What the flows read before they decide: all screens and all areas.
  void readLists();
  tovr::IEncryption& encryption() { return host_.encryption(); }

 private:
  tovrhost::PluginHost host_;
  int areas_ = 0;
};

}  // namespace tovrbench
