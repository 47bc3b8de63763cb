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

// Decodes entries as if they were set into a dictionary one after another (a
// later entry replaces an earlier one with the same key) and visited in its
// key order. The work is linear in their size, up to sorting the keys when
// they are not in order already and the segment keys.
void decode(const Entry *entries, size_t count, Put put, void *context) noexcept;

} // namespace mime::rfc2231
