// Checks that the value targets (and the message tests) share: one text in the
// three forms the C functions take, and the order of a sort's Compare.
#pragma once

#include <pb/pb_abort.h>
#include <pb/pb_mem.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_string.h>

#include <string>

namespace fuzz {

// The order of a sort's Compare and Equals on two values: reflexive and
// antisymmetric, Equals as Compare gives 0 (sorts without a compare function
// order by identity).
template <class T> void ordered(T *a, T *b, PB_INT (*compare)(T *, T *), PB_BOOL (*equals)(T *, T *))
{
    PB_ASSERT( compare(a, a) == 0 && equals(b, b) );
    PB_ASSERT( compare(a, b) == -compare(b, a) && static_cast<bool>(equals(a, b)) == (compare(a, b) == 0) );
}

// One text in the three forms the C functions take: a PB_STRING, UTF-8 and
// wide characters, each with its length as a PB_INT.
struct Forms {
    pb::Ref<PB_STRING> string;
    std::string utf8;
    std::wstring wide;

    explicit Forms(PB_STRING *s) : string(pb::retained(s))
    {
        PB_INT length = 0;
        char *text = pbStringConvertToCstr(s, 0, &length);
        utf8.assign(text, static_cast<size_t>(length));
        pbMemFree(text);
        for (PB_INT i = 0; i < pbStringLength(s); ++i)
            wide += static_cast<wchar_t>(pbStringCharAt(s, i));
    }
    explicit Forms(const std::string &text)
        : Forms(pb::adopt(pbStringCreateFromCstr(text.data(), static_cast<PB_INT>(text.size()))).get())
    {
    }
    PB_INT utf8Length() const { return static_cast<PB_INT>(utf8.size()); }
    PB_INT wideLength() const { return static_cast<PB_INT>(wide.size()); }
    // -1 (up to the NUL) when the text holds no NUL, else the length: both
    // ways of passing a length run.
    PB_INT utf8UpToNul() const { return utf8.find('\0') == std::string::npos ? -1 : utf8Length(); }
    PB_INT wideUpToNul() const { return wide.find(L'\0') == std::wstring::npos ? -1 : wideLength(); }
};

} // namespace fuzz
