// Internal: direct access to string storage for the runtime's own writers
// (format, character sets), so they fill a string without a copy.
#pragma once

#include <pb/pb_sort.h>
#include <pb/pb_string.h>

// Code points live right after the object when they fit the room given at
// creation, and move to their own allocation when the string grows past it.
struct PB_STRING {
    PB_OBJ_HEADER header;
    PB_INT length;
    PB_INT capacity;
    PB_CHAR *chars;
};

namespace pb::string {

// Code-point order, a prefix first: the order of strings everywhere.
inline PB_INT order(const PB_STRING *x, const PB_STRING *y) noexcept
{
    PB_INT n = x->length < y->length ? x->length : y->length;
    for (PB_INT i = 0; i < n; ++i)
        if (x->chars[i] != y->chars[i])
            return x->chars[i] < y->chars[i] ? -1 : 1;
    return x->length < y->length ? -1 : x->length > y->length ? 1 : 0;
}

// True when obj is a string (the runtime's files read strings directly).
inline bool is(const PB_OBJ *obj) noexcept
{
    return reinterpret_cast<const PB_OBJ_HEADER *>(obj)->sort == pbStringSort();
}

// A new string with room for capacity code points and length 0.
PB_STRING *createWithCapacity(PB_INT capacity) noexcept;

// Makes *s private and count code points longer; returns where they go.
// The pointer is valid until the next change of *s.
PB_CHAR *appendSpace(PB_STRING **s, PB_INT count) noexcept;

// Shortens the private string *s to length code points.
void truncate(PB_STRING **s, PB_INT length) noexcept;

void appendFormat(PB_STRING **s, const char *format, PB_INT formatLength, va_list args) noexcept;

// Appends UTF-8 text, ill-formed parts as U+FFFD.
void appendUtf8(PB_STRING **s, const char *utf8, size_t length) noexcept;

} // namespace pb::string
