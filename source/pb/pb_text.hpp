// Internal: C text as a temporary string, for the Cstr and Wcstr variants of the
// operations that take a PB_STRING. A variant is one call of its string
// operation with the text wrapped:
//
//   PB_BOOL pbFlagsetHasFlagCstr(PB_FLAGSET *set, const char *name, PB_INT length) noexcept
//   {
//       return pbFlagsetHasFlag(set, pb::Text(name, length));
//   }
//
// The string lives until the end of the full expression that made it, so it
// outlasts the call and is released on every path.
#pragma once

#include <pb/pb_ref.hpp>
#include <pb/pb_string.h>

#include <cwchar>

namespace pb {

class Text {
public:
    // UTF-8 text (invalid bytes become U+FFFD); length -1: up to the NUL.
    Text(const char *text, PB_INT length) noexcept : s_(adopt(pbStringCreateFromCstr(text, length))) {}
    // Wide text; length -1: up to the NUL.
    Text(const wchar_t *text, PB_INT length) noexcept : s_(adopt(pbStringCreateFromWcstr(text, length))) {}

    // For an optional argument: null text gives a null string.
    template <class CharT> static Text optional(const CharT *text, PB_INT length) noexcept
    {
        return text ? Text(text, length) : Text();
    }

    operator PB_STRING *() const noexcept { return s_.get(); }

private:
    Text() noexcept = default;
    Ref<PB_STRING> s_;
};

} // namespace pb
