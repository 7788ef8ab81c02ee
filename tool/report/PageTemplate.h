// What every page is made of: the files of tool/report/page, put into the program when it is built.
#pragma once

namespace tovrdb::tool {

extern const char kPageHtml[];
extern const char kPageStyle[];
extern const char kPageScript[];
extern const char kPageStyleHash[];  // SHA-256 of the style and of the script, in base 64, as policies name them
extern const char kPageScriptHash[];

}  // namespace tovrdb::tool
