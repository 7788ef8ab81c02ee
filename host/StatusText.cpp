#include "host/StatusText.h"

#include "storage/StatusCodes.h"

namespace tovrhost {

const char* statusText(int code) {
  switch (code) {
    case tovr::kOk:
      return "success";
    case tovr::kNoConnection:
      return "the library has no host or no connection, or the record is missing or of the wrong kind";
    case tovr::kNoData:
      return "the record is missing, or no data of that type is stored";
    case tovr::kNoOperator:
      return "the library has no table for this kind of record";
    case tovr::kCipherFailed:
      return "a stored block is damaged and cannot be decrypted, or a block cannot be encrypted";
    case tovr::kRectangleRefused:
      return "an edge of the rectangle is -1, or the rectangle lies outside the stored area";
    case tovr::kBlockTooSmall:
      return "the stored block holds fewer bytes than the rectangle needs, or the screen's name is missing";
    case tovr::kTypeNotGiven:
      return "the database has no information row that says its type, or coefficient type 16, which means \"not "
             "given\", was asked for";
    case tovr::kNoSuchScreenName:
      return "no screen has that name";
    case tovr::kNoMatchingArea:
      return "no stored area of that type holds the rectangle";
    case tovr::kNoScreenForRectangle:
      return "no screen holds the rectangle (an update needs a screen with exactly that rectangle)";
    case 1:
      return "the database engine refused a statement";
    case tovr::kUnknownDatabaseType:
      return "the database type cannot be read, or the engine failed inside";
    case 5:
    case 6:
      return "the database is in use by another program; try again when it has finished";
    case 7:
      return "out of memory";
    case 8:
      return "the database file is read-only: change its permissions, or work on a copy";
    case 10:
      return "reading or writing the disk failed";
    case 11:
      return "the database file is damaged";
    case 13:
      return "the disk is full";
    case 14:
      return "the database file cannot be opened: check the folder and its permissions";
    case 18:
      return "the data is larger than the database can hold";
    case 19:
      return "a rule of its table rejected a row";
    case 21:
      return "no database file is open";
    case 26:
      return "the key is wrong, or the file is not a database";
    default:
      return "no description";
  }
}

}  // namespace tovrhost
