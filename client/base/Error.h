// The one exception of the client, as data: each program words it for its own users.
#pragma once

#include <fmt/core.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "manager/Rectangle.h"

namespace tovrdb {

enum ErrorKind {
  kRefused,        // the library refused: what was asked for is not stored, or the engine failed
  kInvalid,        // an argument is wrong, or arguments contradict each other
  kFileProblem,    // a file is missing, exists already, cannot be read or written, or holds something else
  kKeyProblem,     // no key, or the key does not open the file
  kPluginProblem,  // the plug-in library cannot be loaded
  kBusy,           // another program is using the file, or changed it meanwhile; try again
  kConflict,       // the operation conflicts with stored data; nothing was written
  kDamaged,        // the database file, or data in it, is damaged
  kNoSpace,        // the disk is full, or a quota or a limit of file sizes is reached
  // Ended from outside, which says nothing about the file; nothing unfinished is left.
  kHungUp,       // by SIGHUP
  kInterrupted,  // by SIGINT
  kTerminated,   // by SIGTERM
  kPipeClosed    // the reader of the output has ended
};

constexpr bool isEnded(ErrorKind kind) { return kind >= kHungUp; }

// What the person may do about an error. Each program has one table that puts these into words.
enum class Remedy {
  kPatch,             // put the cells into the stored block
  kReplace,           // remove stored areas that lie wholly inside the new one
  kBeside,            // store in addition
  kNewScreen,         // confirm that a screen of this name is wanted
  kForce,             // do it anyway
  kWithAreas,         // delete the areas of the screen, too
  kOverwrite,         // replace the existing file
  kWait,              // try again, or wait longer for the other program
  kCheckFile,         // run the checks of the file
  kRecoverFile,       // open the database once with its key, which completes or undoes an interrupted change
  kExportAndImport,   // export the file, correct the manifest, and import it
  kCreateFile,        // make a new file
  kLocatePlugin,      // say where the plug-in library is
  kListAreas,         // look at the stored areas
  kListData,          // look at the stored data
  kListMeasurements,  // look at the stored measurements
  kStoreBlock,        // store a block of cells
  kAddScreen,         // add a screen
  kMoveData,          // read the data, delete it, and store it again afterwards
  kGiveTypeOrArea,    // say which coefficient type, or which area
  kGiveRectOrScreen,  // choose one of several areas by its rectangle or screen
  kGiveScreen,        // say which screen
  kOmitScreen,        // do not name a screen
  kGiveAreaIds,       // choose areas by their ids
  kReadAcross,        // read across several areas
  kReadApart,         // read one area at a time
  kFill,              // give a number for cells that no area covers
  kGiveNumberType,    // say what type the numbers have
  kGiveNumberForm,    // say what type, scale and unit the numbers have
  kOtherNumberType,   // choose another number type, or none
  kReadRaw            // read the file as raw bytes
};

// What an error is about, as far as it is known.
struct Subject {
  std::string file;
  std::string screen;
  std::optional<std::int64_t> area;
  std::optional<tovr::Rect> rect;
};

// what() says what failed and on which thing, and never how to call something: that is for remedies(). It never holds a
// key or a payload.
class Error : public std::runtime_error {
 public:
  Error(ErrorKind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  template <class First, class... More>
  Error(ErrorKind kind, fmt::format_string<First, More...> text, First&& first, More&&... more)
      : Error(kind, fmt::format(text, std::forward<First>(first), std::forward<More>(more)...)) {}

  ErrorKind kind() const { return kind_; }

  // The status code with which the library or its engine refused; 0 if neither was asked.
  int status() const { return status_; }
  Error& setStatus(int status);

  const Subject& subject() const { return subject_; }
  Error& setSubject(Subject subject);

  // In the order in which a person reads them.
  const std::vector<Remedy>& remedies() const { return remedies_; }
  Error& suggest(Remedy remedy);

  // Lines that a person reads before what(): one per conflict or faulty file, if there are several.
  const std::vector<std::string>& details() const { return details_; }
  Error& setDetails(std::vector<std::string> details);

  // The same error with what() preceded by the thing on which it happened: "wall.db: ...".
  Error about(const std::string& thing) const;

 private:
  ErrorKind kind_;
  int status_ = 0;
  Subject subject_;
  std::vector<Remedy> remedies_;
  std::vector<std::string> details_;
};

// Stable names for programs in other languages: "conflict", "patch".
const char* nameOf(ErrorKind kind);
const char* nameOf(Remedy remedy);

// Why a change of a file is refused before anything is written.
struct Objection {
  ErrorKind kind = kConflict;  // kRefused if the library would refuse as well, kInvalid for contradicting arguments
  int status = 0;              // with which the library would refuse
  std::vector<Remedy> remedies;
  Subject subject;
  std::string text;
};

// Throws Error unless there are none: a single objection is its text and subject, several are its details, a line each.
// `outcome` says what became of the change: "nothing was stored". The remedies are those of all objections.
void requireNone(const std::vector<Objection>& objections, const std::string& outcome);

}  // namespace tovrdb
