// Internal: RFC 2231 decoding over text in place, for the header codecs, which
// read parameters into one character store and create strings only for what the
// result holds. mime___Rfc2231Decode runs the same steps over a dictionary.
#pragma once

#include <pb/pb_string.h>

#include <cstddef>

namespace mime::rfc2231 {

// A run of code points of text that the caller keeps.
struct Span {
    const PB_CHAR *chars;
    PB_INT length;
};

struct Entry {
    Span key;
    Span value;
};

// Called for each result entry in visiting order: the entry it comes from, its
// name, and its decoded text, or null for a plain parameter whose value is the
// entry's value as it is. A later call for the same name replaces the earlier.
using Put = void (*)(void *context, size_t entry, Span name, PB_STRING *decoded);

// How the charset of an extended value is found. Strictly (the default): by
// its registered names; a parameter with any other is left out. Tolerantly:
// also by the labels that mail and web software use (mime_charset_labels.hpp),
// and an unknown one reads its bytes as US-ASCII (U+FFFD for the rest); note
// (when set) is told of every charset that is no registered name.
struct CharsetLookup {
    bool tolerant = false;
    void (*note)(void *context, Span charset) = nullptr;
    void *context = nullptr;
};

// Decodes entries as if they were set into a dictionary one after another (a
// later entry replaces an earlier one with the same key) and visited in its
// key order. The work is linear in their size, up to sorting the keys when
// they are not in order already and the segment keys.
void decode(const Entry *entries, size_t count, Put put, void *context, const CharsetLookup &lookup = {}) noexcept;

} // namespace mime::rfc2231
