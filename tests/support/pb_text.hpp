// Test helpers: strings from UTF-8 literals, and strings back as UTF-8.
#pragma once

#include <pb/pb.h>
#include <pb/pb_ref.hpp>

#include <string>
#include <string_view>

namespace test {

using pb::adopt;
using pb::Ref;

inline Ref<PB_STRING> str(std::string_view utf8)
{
    return adopt(pbStringCreateFromCstr(utf8.data(), static_cast<PB_INT>(utf8.size())));
}

inline Ref<PB_STRING> chars(std::u32string_view cps)
{
    return adopt(
        pbStringCreateFromCharsCopy(reinterpret_cast<const PB_CHAR *>(cps.data()), static_cast<PB_INT>(cps.size())));
}

inline std::string utf8(PB_STRING *s)
{
    PB_INT n = 0;
    char *text = pbStringConvertToCstr(s, 0, &n);
    std::string out(text, static_cast<size_t>(n));
    pbMemFree(text);
    return out;
}

// Takes over a new string reference and returns its UTF-8 text.
inline std::string take(PB_STRING *s)
{
    Ref<PB_STRING> held = adopt(s);
    return utf8(held.get());
}

inline std::u32string codePoints(PB_STRING *s)
{
    const PB_CHAR *c = pbStringBacking(s);
    return std::u32string(reinterpret_cast<const char32_t *>(c), static_cast<size_t>(pbStringLength(s)));
}

inline std::string text(PB_OBJ *obj)
{
    return take(pbObjToString(obj));
}

inline Ref<PB_BUFFER> bytes(std::string_view b)
{
    return adopt(pbBufferCreateFromBytesCopy(b.data(), static_cast<PB_INT>(b.size())));
}

inline std::string bytesOf(PB_BUFFER *b)
{
    return std::string(reinterpret_cast<const char *>(pbBufferBacking(b)), static_cast<size_t>(pbBufferLength(b)));
}

} // namespace test
