// Text between the library's strings of code points and what the tool prints:
// UTF-8, escaped for a terminal, or as JSON string literals.
#pragma once

#include "library.hpp"

#include <string>
#include <string_view>

namespace mimetool {

// Control characters (C0, DEL, C1), line and paragraph separators and the
// bidirectional format characters: what must never reach a terminal or a file
// name as it is.
bool isControlOrBidi(PB_CHAR c);

// s for a terminal: control characters, bidirectional format characters and the
// backslash are written as escapes (\x1B, \u{202E}, \\), so that a hostile value
// can neither steer the terminal nor reorder the line it stands on.
std::string shown(PB_STRING *s);
// shown(s), in double quotes (with \" inside) unless s is a non-empty RFC 2045 token.
std::string shownValue(PB_STRING *s);
// s as a JSON string literal.
std::string jsonString(PB_STRING *s);
std::string jsonString(std::string_view ascii);
// "1 byte", "12 bytes".
std::string byteCount(PB_INT count);
// shown(s) in double quotes, cut after 60 characters: a value quoted in a message.
std::string excerpt(PB_STRING *s);
// Whether s starts (ends) with the lower-case ASCII text, without regard to case.
bool startsWith(PB_STRING *s, std::string_view ascii);
bool endsWith(PB_STRING *s, std::string_view ascii);

} // namespace mimetool
