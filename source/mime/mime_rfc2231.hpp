// Internal: RFC 2231 decoding over text in place, for the header codecs, which
// read parameters into one character store and create strings only for what the
// result holds. mime___Rfc2231Decode runs the same steps over a dictionary.
#pragma once

#include <mime/mime_defect.h>
#include <mime/mime_options.h>
#include <pb/pb_dict.h>
#include <pb/pb_ref.hpp>
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

// How strictly header values are read. Strictly (the default), as the
// decoders document it. Tolerantly, as the tolerant message reader reads them:
// an RFC 2231 charset is also found by the labels that mail and web software
// use (mime_charset_labels.hpp), and an unknown one reads its bytes as US-ASCII
// (U+FFFD for the rest), the parameter kept; a parameter list that the grammar
// cannot read to its end is read as mail readers split it (at each ";" outside
// quotes). note (when set) is told of each such departure, with a detail (the
// charset's name).
struct Tolerance {
    bool tolerant = false;
    void (*note)(void *context, MIME_DEFECT_CODE code, Span detail) = nullptr;
    void *context = nullptr;
};

// Decodes entries as if they were set into a dictionary one after another (a
// later entry replaces an earlier one with the same key) and visited in its
// key order. The work is linear in their size, up to sorting the keys that
// are not later segments' ("name*1", ...) when they are not in order already.
void decode(const Entry *entries, size_t count, Put put, void *context, const Tolerance &lookup = {}) noexcept;

// Takes one parameter as written: views of its key and value that last for the call.
using Write = void (*)(void *context, Span key, Span value);

// The parameters of source (names to values) in RFC 2231 form as the options
// ask (charset, segment length), given to write in the key order of a
// dictionary of them (so "t*10" comes before "t*2"), without building that
// dictionary or a string per segment: the work and memory are linear in the
// text written. mime___Rfc2231Encode is the same as a dictionary.
void encode(PB_DICT *source, MIME_OPTIONS *mo, Write write, void *context) noexcept;

} // namespace mime::rfc2231
