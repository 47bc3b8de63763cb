// Internal: the charset labels that mail and web software write beside the
// registered names (cp1252, utf8, latin1, ...), as the WHATWG Encoding
// Standard's label table lists them, for the encodings the runtime has.
#pragma once

#include <pb/pb_charset.h>

namespace mime {

// The charset a label names (ASCII letters in any case, spaces, tabs, CR and
// LF around it ignored), or -1 when the table has no such label.
PB_CHARSET charsetFromLabel(const PB_CHAR *chars, PB_INT length) noexcept;

// The charset of a registered name or alias (pbCharsetFromIanaName), else of
// a label; -1 for neither. registered says whether the name was registered.
PB_CHARSET charsetFromNameOrLabel(const PB_CHAR *chars, PB_INT length, bool &registered) noexcept;

} // namespace mime
