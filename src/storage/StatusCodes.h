// Every status code of the system's own. 0 is success; SQLite's result codes (below 4096) pass through unchanged.
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

}  // namespace tovr
