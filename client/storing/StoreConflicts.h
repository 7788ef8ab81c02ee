// The objections to storing a batch of blocks, collected block by block.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/base/Error.h"
#include "client/cells/NumberForm.h"
#include "client/storing/StorePlan.h"
#include "client/storing/StoredLayout.h"

namespace tovrdb {

class StoreConflicts {
 public:
  // All arguments are borrowed.
  StoreConflicts(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules);

  // What is checked and objected to from here on concerns this block.
  void begin(std::size_t block) { block_ = block; }
  std::vector<Objection> take() { return std::move(objections_); }

  void object(std::vector<Remedy> remedies, const std::string& text);
  // With the status with which the library would refuse.
  void refuse(int status, const std::string& text);
  void refuseDamaged(const StoredArea& area);

  // Runs `work`; an Error that it throws becomes an objection. Returns whether there was none.
  template <class Work>
  bool orObject(const Work& work) {
    try {
      work();
      return true;
    } catch (const Error& error) {
      add(error.kind(), error.status(), error.remedies(), error.what());
      return false;
    }
  }

  // Each objects to what the rules do not allow.
  void checkBatch();                                               // blocks that replace or hide each other
  void checkNewName();                                             // a screen's name that is probably a typing error
  void checkInside(const StoredScreen* screen);                    // the screen's rectangle; null: a screen to be added
  void checkRewrite(const StoredArea& area);                       // the area's place, width and damage
  void checkMove(const StoredScreen& screen, std::size_t except);  // the screen's other areas
  // The stored numbers, kept as `kept`, would be read as `wanted`.
  void checkForm(const StoredArea& area, const std::string& kept, const std::string& wanted);

  // Whether the library may put the block in the place of a stored one: it has no area number.
  static bool replaces(const WantedBlock& block);

 private:
  bool byName() const { return stored_.databaseType == 1; }
  const WantedBlock& block() const { return wanted_[block_]; }
  const Rect& rect() const { return block().area.rect; }
  std::string nameOf(std::size_t block) const;
  void add(ErrorKind kind, int status, std::vector<Remedy> remedies, const std::string& text);

  const StoredPlaces& stored_;
  const std::vector<WantedBlock>& wanted_;
  const StoreRules& rules_;
  std::size_t block_ = 0;
  PlaceIndex batch_;
  std::map<std::pair<std::string, std::int32_t>, std::size_t> firstWanted_;  // by screen name and type
  ScreenNames names_;                                                        // of stored screens and those to be added
  std::map<std::string, Rect> addedScreens_;                                 // as the first block that names it has it
  std::vector<Objection> objections_;
};

}  // namespace tovrdb
