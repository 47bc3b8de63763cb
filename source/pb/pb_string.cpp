#include <pb/pb_int.h>
#include <pb/pb_mem.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_sort.hpp>
#include <pb/pb_string.hpp>
#include <pb/pb_text.hpp>
#include <pb/pb_utf8.hpp>
#include <pb/pb_vector.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

constexpr PB_INT kMaxLength = PB_INT_MAX / 8;

PB_CHAR *inlineChars(PB_STRING *s)
{
    return reinterpret_cast<PB_CHAR *>(s + 1);
}

extern "C" {
static void pb___StringFreeFunc(PB_OBJ *obj) noexcept;
static PB_INT pb___StringCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept;
static PB_STRING *pb___StringToStringFunc(PB_OBJ *obj) noexcept;
}

} // namespace

PB___SORT_DEFINE(pb, String, PB_STRING, nullptr, pb___StringFreeFunc, pb___StringCompareFunc, pb___StringToStringFunc)

namespace {

void pb___StringFreeFunc(PB_OBJ *obj) noexcept
{
    PB_STRING *s = pbStringFrom(obj);
    if (s->chars != inlineChars(s))
        pb___MemRelease(s->chars, s->capacity * static_cast<PB_INT>(sizeof(PB_CHAR)));
    s->chars = pb::poison<PB_CHAR>();
}

PB_INT pb___StringCompareFunc(PB_OBJ *a, PB_OBJ *b) noexcept
{
    return pb::string::order(pbStringFrom(a), pbStringFrom(b));
}

PB_STRING *pb___StringToStringFunc(PB_OBJ *obj) noexcept
{
    return pbStringRetain(pbStringFrom(obj));
}

// Makes *s private with room for extra more code points.
void reserve(PB_STRING **s, PB_INT extra)
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_STRING *str = *s;
    PB_ASSERT( extra >= 0 && extra <= kMaxLength - str->length );
    PB_INT need = str->length + extra;
    if (pb::isShared(str)) {
        PB_STRING *copy = pb::string::createWithCapacity(need);
        std::memcpy(copy->chars, str->chars, static_cast<size_t>(str->length) * sizeof(PB_CHAR));
        copy->length = str->length;
        pb::release(str);
        *s = copy;
        return;
    }
    if (need <= str->capacity)
        return;
    PB_INT capacity = std::max({need, std::min(kMaxLength, str->capacity * 2), PB_INT{16}});
    size_t bytes = static_cast<size_t>(capacity) * sizeof(PB_CHAR);
    PB_CHAR *chars;
    if (str->chars == inlineChars(str)) {
        chars = static_cast<PB_CHAR *>(pb___MemAlloc(static_cast<PB_INT>(bytes)));
        std::memcpy(chars, str->chars, static_cast<size_t>(str->length) * sizeof(PB_CHAR));
    } else {
        chars = static_cast<PB_CHAR *>(pb___MemResize(str->chars, str->capacity * static_cast<PB_INT>(sizeof(PB_CHAR)),
                                                      static_cast<PB_INT>(bytes)));
    }
    str->chars = chars;
    str->capacity = capacity;
}

bool isAsciiUpper(PB_CHAR c)
{
    return c >= 'A' && c <= 'Z';
}
PB_CHAR asciiLower(PB_CHAR c)
{
    return isAsciiUpper(c) ? c + ('a' - 'A') : c;
}
bool isTrimmed(PB_CHAR c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

namespace pb::string {

PB_STRING *createWithCapacity(PB_INT capacity) noexcept
{
    PB_ASSERT( capacity >= 0 && capacity <= kMaxLength );
    auto *s = reinterpret_cast<PB_STRING *>(
        pb___ObjCreateWithTail(static_cast<PB_INT>(sizeof(PB_STRING)) + capacity * static_cast<PB_INT>(sizeof(PB_CHAR)),
                               capacity * static_cast<PB_INT>(sizeof(PB_CHAR)), &pb___sort_PB_STRING));
    s->chars = inlineChars(s);
    s->capacity = capacity;
    return s;
}

PB_CHAR *appendSpace(PB_STRING **s, PB_INT count) noexcept
{
    reserve(s, count);
    PB_CHAR *at = (*s)->chars + (*s)->length;
    (*s)->length += count;
    return at;
}

void truncate(PB_STRING **s, PB_INT length) noexcept
{
    PB_ASSERT( length >= 0 && length <= (*s)->length );
    reserve(s, 0);
    (*s)->length = length;
}

void appendUtf8(PB_STRING **s, const char *utf8, size_t length) noexcept
{
    PB_ASSERT( length <= static_cast<size_t>(kMaxLength) );
    PB_INT before = (*s)->length;
    PB_CHAR *out = appendSpace(s, static_cast<PB_INT>(length));
    PB_INT written = utf8::decode(reinterpret_cast<const uint8_t *>(utf8), length, out, false);
    (*s)->length = before + written;
}

} // namespace pb::string

PB_STRING *pbStringCreate(void) noexcept
{
    return pb::string::createWithCapacity(0);
}

PB_STRING *pbStringCreateFromCstr(const char *utf8, PB_INT length) noexcept
{
    PB_ASSERT( length >= -1 );
    PB_ASSERT( utf8 || length == 0 );
    size_t n = length < 0 ? std::strlen(utf8) : static_cast<size_t>(length);
    PB_ASSERT( n <= static_cast<size_t>(kMaxLength) );
    PB_STRING *s = pb::string::createWithCapacity(static_cast<PB_INT>(n));
    s->length = pb::utf8::decode(reinterpret_cast<const uint8_t *>(utf8), n, s->chars, false);
    return s;
}

PB_STRING *pbStringCreateFromWcstr(const wchar_t *text, PB_INT length) noexcept
{
    PB_ASSERT( length >= -1 );
    PB_ASSERT( text || length == 0 );
    size_t n = length < 0 ? std::wcslen(text) : static_cast<size_t>(length);
    PB_ASSERT( n <= static_cast<size_t>(kMaxLength) );
    PB_STRING *s = pb::string::createWithCapacity(static_cast<PB_INT>(n));
    PB_CHAR *out = s->chars;
    for (size_t i = 0; i < n; ++i) {
        auto c = static_cast<PB_CHAR>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n) {
                auto low = static_cast<PB_CHAR>(text[i + 1]);
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                    ++i;
                }
            }
        }
        *out++ = pb::utf8::isScalar(c) ? c : pb::utf8::kReplacement;
    }
    s->length = out - s->chars;
    return s;
}

PB_STRING *pbStringCreateFromCharsCopy(const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( count >= 0 );
    PB_ASSERT( chars || count == 0 );
    PB_STRING *s = pb::string::createWithCapacity(count);
    if (count)
        std::memcpy(s->chars, chars, static_cast<size_t>(count) * sizeof(PB_CHAR));
    s->length = count;
    return s;
}

PB_STRING *pb___StringCreateUnfilled(PB_INT count, PB_CHAR **chars) noexcept
{
    PB_ASSERT( chars );
    PB_STRING *s = pb::string::createWithCapacity(count);
    s->length = count;
    *chars = s->chars;
    return s;
}

PB_STRING *pb___StringCreateWithRoom(PB_INT count) noexcept
{
    return pb::string::createWithCapacity(count);
}

PB_STRING *pb___StringCreateConstant(const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( count >= 0 && count <= kMaxLength );
    PB_ASSERT( chars || count == 0 );
    // Not from pb___ObjCreate: a constant is never freed, so it is not counted
    // live; the process owns it.
    size_t bytes = sizeof(PB_STRING) + static_cast<size_t>(count) * sizeof(PB_CHAR);
    auto *s = static_cast<PB_STRING *>(std::calloc(1, bytes));
    PB_ASSERT_MSG("out of memory", s);
    s->header.kind = PB_OBJ_KIND_CONSTANT;
    s->header.sort = &pb___sort_PB_STRING;
    s->header.size = static_cast<int64_t>(bytes);
    s->header.refCount = 1;
    s->chars = inlineChars(s);
    s->capacity = s->length = count;
    if (count)
        std::memcpy(s->chars, chars, static_cast<size_t>(count) * sizeof(PB_CHAR));
    return s;
}

PB_STRING *pbStringCreateFromLeading(PB_STRING *s, PB_INT count) noexcept
{
    return pbStringCreateFromInner(s, 0, count);
}

PB_STRING *pbStringCreateFromInner(PB_STRING *s, PB_INT offset, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( offset >= 0 && count >= 0 );
    PB_ASSERT( offset <= s->length && count <= s->length - offset );
    if (offset == 0 && count == s->length)
        return pbStringRetain(s);
    return pbStringCreateFromCharsCopy(s->chars + offset, count);
}

PB_STRING *pbStringCreateFromFormatCstr(const char *format, PB_INT formatLength, ...) noexcept
{
    va_list args;
    va_start(args, formatLength);
    PB_STRING *s = pbStringCreateFromFormatCstrVa(format, formatLength, args);
    va_end(args);
    return s;
}

PB_STRING *pbStringCreateFromFormatCstrVa(const char *format, PB_INT formatLength, va_list args) noexcept
{
    PB_STRING *s = pbStringCreate();
    pb::string::appendFormat(&s, format, formatLength, args);
    return s;
}

void pbStringAppendFormatCstr(PB_STRING **s, const char *format, PB_INT formatLength, ...) noexcept
{
    va_list args;
    va_start(args, formatLength);
    pbStringAppendFormatCstrVa(s, format, formatLength, args);
    va_end(args);
}

void pbStringAppendFormatCstrVa(PB_STRING **s, const char *format, PB_INT formatLength, va_list args) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    pb::string::appendFormat(s, format, formatLength, args);
}

const PB_CHAR *pbStringBacking(PB_STRING *s) noexcept
{
    PB_ASSERT( s );
    return s->chars;
}

PB_INT pbStringLength(PB_STRING *s) noexcept
{
    PB_ASSERT( s );
    return s->length;
}

PB_CHAR pbStringCharAt(PB_STRING *s, PB_INT index) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( index >= 0 && index < s->length );
    return s->chars[index];
}

void pbStringAppend(PB_STRING **s, PB_STRING *other) noexcept
{
    PB_ASSERT( other );
    pbStringAppendChars(s, other->chars, other->length);
}

void pbStringAppendChar(PB_STRING **s, PB_CHAR c) noexcept
{
    *pb::string::appendSpace(s, 1) = c;
}

void pbStringAppendChars(PB_STRING **s, const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_ASSERT( count >= 0 );
    PB_ASSERT( chars || count == 0 );
    if (count == 0)
        return;
    // chars may point into *s itself, which growing would move: note the offset.
    PB_STRING *before = *s;
    bool inside = chars >= before->chars && chars < before->chars + before->length;
    PB_INT offset = inside ? chars - before->chars : 0;
    pb::Ref<PB_STRING> keep = pb::retained(inside ? before : nullptr);
    PB_CHAR *out = pb::string::appendSpace(s, count);
    const PB_CHAR *from = inside ? (*s == before ? (*s)->chars + offset : chars) : chars;
    std::memmove(out, from, static_cast<size_t>(count) * sizeof(PB_CHAR));
}

void pbStringPrependChar(PB_STRING **s, PB_CHAR c) noexcept
{
    pb::string::appendSpace(s, 1);
    PB_STRING *str = *s;
    std::memmove(str->chars + 1, str->chars, static_cast<size_t>(str->length - 1) * sizeof(PB_CHAR));
    str->chars[0] = c;
}

void pbStringDelLeading(PB_STRING **s, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_ASSERT( count >= 0 && count <= (*s)->length );
    if (count == 0)
        return;
    reserve(s, 0);
    PB_STRING *str = *s;
    std::memmove(str->chars, str->chars + count, static_cast<size_t>(str->length - count) * sizeof(PB_CHAR));
    str->length -= count;
}

void pbStringDelTrailing(PB_STRING **s, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_ASSERT( count >= 0 && count <= (*s)->length );
    if (count)
        pb::string::truncate(s, (*s)->length - count);
}

void pbStringToLower(PB_STRING **s) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_STRING *str = *s;
    PB_CHAR *end = str->chars + str->length;
    PB_CHAR *first = std::find_if(str->chars, end, isAsciiUpper);
    if (first == end)
        return; // nothing to change: no copy of a shared string
    PB_INT from = first - str->chars;
    reserve(s, 0);
    str = *s;
    for (PB_INT i = from; i < str->length; ++i)
        str->chars[i] = asciiLower(str->chars[i]);
}

void pbStringTrim(PB_STRING **s) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( *s );
    PB_STRING *str = *s;
    PB_INT begin = 0, end = str->length;
    while (begin < end && isTrimmed(str->chars[begin]))
        ++begin;
    while (end > begin && isTrimmed(str->chars[end - 1]))
        --end;
    if (begin == 0 && end == str->length)
        return;
    PB_STRING *trimmed = pbStringCreateFromCharsCopy(str->chars + begin, end - begin);
    pbStringRelease(str);
    *s = trimmed;
}

PB_VECTOR *pbStringSplitChar(PB_STRING *s, PB_CHAR c, PB_INT maxParts) noexcept
{
    return pbStringSplitChars(s, &c, 1, maxParts);
}

PB_VECTOR *pbStringSplitChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count, PB_INT maxParts) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( chars && count > 0 );
    PB_ASSERT( maxParts == -1 || maxParts > 0 );
    pb::Ref<PB_VECTOR> parts = pb::adopt(pbVectorCreate());
    const PB_CHAR *text = s->chars;
    PB_INT n = s->length, start = 0, i = 0, pieces = 1;
    while (i + count <= n && (maxParts == -1 || pieces < maxParts)) {
        if (text[i] == chars[0] && std::equal(chars + 1, chars + count, text + i + 1)) {
            pb::Ref<PB_STRING> piece = pb::adopt(pbStringCreateFromInner(s, start, i - start));
            pbVectorAppendString(parts.addr(), piece.get());
            i += count;
            start = i;
            ++pieces;
        } else {
            ++i;
        }
    }
    pb::Ref<PB_STRING> last = pb::adopt(pbStringCreateFromInner(s, start, n - start));
    pbVectorAppendString(parts.addr(), last.get());
    return parts.release();
}

PB_BOOL pbStringEqualsChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( count >= 0 );
    PB_ASSERT( chars || count == 0 );
    return s->length == count && std::equal(chars, chars + count, s->chars);
}

PB_BOOL pbStringEndsWithChars(PB_STRING *s, const PB_CHAR *chars, PB_INT count) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( count >= 0 );
    PB_ASSERT( chars || count == 0 );
    return s->length >= count && std::equal(chars, chars + count, s->chars + s->length - count);
}

PB_BOOL pbStringEqualsCaseFold(PB_STRING *s, PB_STRING *other) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( other );
    return s->length == other->length &&
           std::equal(s->chars, s->chars + s->length, other->chars,
                      [](PB_CHAR a, PB_CHAR b) { return asciiLower(a) == asciiLower(b); });
}

PB_BOOL pbStringEqualsCaseFoldCstr(PB_STRING *s, const char *text, PB_INT length) noexcept
{
    return pbStringEqualsCaseFold(s, pb::Text(text, length));
}

PB_BOOL pbStringEqualsCaseFoldWcstr(PB_STRING *s, const wchar_t *text, PB_INT length) noexcept
{
    return pbStringEqualsCaseFold(s, pb::Text(text, length));
}

char *pbStringConvertToCstr(PB_STRING *s, PB_INT flags, PB_INT *length) noexcept
{
    PB_ASSERT( s );
    PB_ASSERT( flags == 0 );
    size_t bytes = 0;
    for (PB_INT i = 0; i < s->length; ++i)
        bytes += static_cast<size_t>(pb::utf8::encodedLength(s->chars[i]));
    auto *text = static_cast<char *>(std::malloc(bytes + 1));
    PB_ASSERT_MSG("out of memory", text);
    auto *out = reinterpret_cast<uint8_t *>(text);
    for (PB_INT i = 0; i < s->length; ++i)
        out += pb::utf8::encode(s->chars[i], out);
    *out = 0;
    if (length)
        *length = static_cast<PB_INT>(bytes);
    return text;
}
