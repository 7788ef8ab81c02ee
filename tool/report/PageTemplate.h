// The files of tool/report/page, embedded when the program is built.
#pragma once

namespace tovrdb::tool {

extern const char kPageHtml[];
extern const char kPageStyle[];
extern const char kPageScript[];
extern const char kPageStyleHash[];  // SHA-256 of style and script in base 64, as a Content-Security-Policy has them
extern const char kPageScriptHash[];

}  // namespace tovrdb::tool
