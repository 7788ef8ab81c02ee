// Words for status codes, for the people in front of a host.
#pragma once

namespace tovrhost {

// What a code of the library's or of SQLite's means; never null. Where one code has several causes the text names them.
const char* statusText(int code);

}  // namespace tovrhost
