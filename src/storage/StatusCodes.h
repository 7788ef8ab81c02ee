// Every status code of the system's own, and a text for every code that an operation returns. 0 is success; SQLite's
// result codes (below 4096) pass through unchanged.
#pragma once

namespace tovr {

constexpr int kOk = 0;                       // success
constexpr int kUnknownDatabaseType = 2;      // 0x2: getDBType only: the database type cannot be read
constexpr int kNoConnection = 4096;          // 0x1000: no host, or no connection under the name "DBOperate"
constexpr int kInvalidRecord = 4096;         // 0x1000: a null record, or a record of the wrong class
constexpr int kNoRecord = 4097;              // 0x1001: a null record (database information, data, measurements)
constexpr int kNoData = 4097;                // 0x1001: no generic data of that type is stored
constexpr int kNoOperator = 4104;            // 0x1008: no table operator under the record's key
constexpr int kCipherFailed = 4106;          // 0x100A: a blob could not be enciphered or deciphered
constexpr int kRectangleRefused = 4109;      // 0x100D: an edge is -1, or the rectangle lies outside the stored one
constexpr int kBlockTooSmall = 4110;         // 0x100E: the cut-out would exceed the stored block
constexpr int kScreenNameMissing = 4110;     // 0x100E: type-1 database: the record has no screen name
constexpr int kTypeNotGiven = 4111;          // 0x100F: database type 2, or coefficient type 16 (not given)
constexpr int kNoSuchScreenName = 4112;      // 0x1010: no screen of that name
constexpr int kNoMatchingArea = 4113;        // 0x1011: no stored coefficient area matches
constexpr int kNoScreenForRectangle = 4116;  // 0x1014: no screen holds (insert) or equals (update) the rectangle

// What a code means, in words for a user; never null. Where one code has several causes the text names them.
inline const char* statusText(int code) {
  switch (code) {
    case kOk:
      return "success";
    case kNoConnection:
      return "the library has no host or no connection, or the record is missing or of the wrong kind";
    case kNoData:
      return "the record is missing, or no data of that type is stored";
    case kNoOperator:
      return "the library has no table for this kind of record";
    case kCipherFailed:
      return "a stored block cannot be deciphered (it is damaged), or a block cannot be enciphered";
    case kRectangleRefused:
      return "an edge of the rectangle is -1, or the rectangle lies outside the stored area";
    case kBlockTooSmall:
      return "the stored block holds fewer bytes than the rectangle needs, or the screen's name is missing";
    case kTypeNotGiven:
      return "the database does not tell its type, or coefficient type 16 was asked for, which means none";
    case kNoSuchScreenName:
      return "no screen has that name";
    case kNoMatchingArea:
      return "no stored area of that type holds the rectangle";
    case kNoScreenForRectangle:
      return "no screen holds the rectangle (an update asks for exactly a screen's)";
    case 1:
      return "the engine refused the statement, or is not SQLCipher";
    case kUnknownDatabaseType:
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

}  // namespace tovr
