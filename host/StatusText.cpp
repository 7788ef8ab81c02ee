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
      return "a stored block cannot be deciphered (it is damaged), or a block cannot be enciphered";
    case tovr::kRectangleRefused:
      return "an edge of the rectangle is -1, or the rectangle lies outside the stored area";
    case tovr::kBlockTooSmall:
      return "the stored block holds fewer bytes than the rectangle needs, or the screen's name is missing";
    case tovr::kTypeNotGiven:
      return "the database does not tell its type, or coefficient type 16 was asked for, which means none";
    case tovr::kNoSuchScreenName:
      return "no screen has that name";
    case tovr::kNoMatchingArea:
      return "no stored area of that type holds the rectangle";
    case tovr::kNoScreenForRectangle:
      return "no screen holds the rectangle (an update asks for exactly a screen's)";
    case 1:
      return "the engine refused the statement, or is not SQLCipher";
    case tovr::kUnknownDatabaseType:
      return "the database does not tell its type, or the engine failed inside";
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
      return "no database file is open";
    case 26:
      return "wrong key, or the file is not a database";
    default:
      return "no description";
  }
}

}  // namespace tovrhost
