// Internal: the words that header values hold most often (media types,
// disposition types, parameter names, charset names as mail programs spell
// them), each one string kept for the life of the process. A decoder that meets
// one of them takes that string instead of making a copy: no allocation, and no
// write to shared memory when it is retained or released.
#pragma once

#include <pb/pb_string.h>

#include <cstddef>

namespace mime::commonWords {

// A string of chars[0, length): the kept one when the text is a common word
// (exactly, case included), else a new copy. The caller owns a reference either
// way.
PB_STRING *string(const PB_CHAR *chars, size_t length) noexcept;

} // namespace mime::commonWords
