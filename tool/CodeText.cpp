#include "tool/CodeText.h"

#include "storage/StatusCodes.h"

namespace tovrtool {
namespace {

// SQLite's result codes, which the library passes through.
const char* engineText(int code) {
  switch (code) {
    case 1:
      return "the database refused the statement";
    case 5:
    case 6:
      return "the database is in use by another program; try again when it has finished";
    case 7:
      return "out of memory";
    case 8:
      return "the database file is read-only; change its permissions or copy it";
    case 10:
      return "the disk failed to read or write";
    case 11:
      return "the database file is damaged";
    case 13:
      return "the disk is full";
    case 14:
      return "the database file cannot be opened; check the folder and its permissions";
    case 18:
      return "the block is larger than the database takes";
    case 19:
      return "a row was rejected by a rule of its table";
    case 21:
      return "the database is not open";
    case 26:
      return "wrong key, or the file is not a database";
    default:
      return "no description";
  }
}

}  // namespace

std::string codeText(int code) {
  switch (code) {
    case tovr::kNoConnection:
      return "the library has no connection, or cannot read this kind of record";
    case tovr::kNoData:
      return "no data of that type is stored";
    case tovr::kNoOperator:
      return "the library has no table for this kind of record";
    case tovr::kCipherFailed:
      return "a stored block cannot be deciphered; it is damaged";
    case tovr::kRectangleRefused:
      return "the rectangle lies outside the stored area";
    case tovr::kBlockTooSmall:
      return "the stored block holds fewer bytes than the rectangle needs";
    case tovr::kTypeNotGiven:
      return "the database does not tell its type, or coefficient type 16 was asked for, which means none";
    case tovr::kNoSuchScreenName:
      return "no screen has that name";
    case tovr::kNoMatchingArea:
      return "no stored area of that type holds the rectangle";
    case tovr::kNoScreenForRectangle:
      return "no screen holds the rectangle (an update asks for exactly a screen's)";
    default:
      return engineText(code);
  }
}

}  // namespace tovrtool
