// Texts that come from elsewhere, made fit for a terminal, a log and a JSON record.
#pragma once

#include <string>
#include <string_view>

namespace orvex::port {

// True for UTF-8 without control characters: those below a blank, DEL and U+0080 to U+009F.
bool IsPrintable(std::string_view text);

// `text` with control characters and bytes that are no UTF-8 as escapes: \n, \t, \r, else \x1b or \u009b.
std::string Printable(std::string_view text);

// `text` with U+FFFD in place of each byte that is no UTF-8.
std::string ValidUtf8(std::string_view text);

}  // namespace orvex::port
