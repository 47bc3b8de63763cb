#include <mime/mime_char.h>
#include <mime/mime_char.hpp>
#include <mime/mime_rfc2231.h>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_buffer.h>
#include <pb/pb_charset.h>
#include <pb/pb_int.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_unicode.h>
#include <pb/pb_vector.h>

namespace {

using pb::adopt;
using pb::Ref;

// Name part of a key: valid when not empty, ASCII, and free of space, controls,
// tspecials, "*", "'" and "%".
PB_BOOL mime___Rfc2231IsAttribute(const PB_CHAR *c, PB_INT n)
{
    for (PB_INT i = 0; i < n; ++i)
        if (c[i] > 127 || c[i] == ' ' || mime___CharIsCtl(c[i]) || mime___CharIsTspecial(c[i]) || c[i] == '*' ||
            c[i] == '\'' || c[i] == '%')
            return PB_FALSE;
    return n > 0;
}

// Text read in place: a run of code points of a string the caller holds.
struct Span {
    const PB_CHAR *chars;
    PB_INT length;
};

Span spanOf(PB_STRING *s)
{
    return {pbStringBacking(s), pbStringLength(s)};
}

using Bytes = mime::SmallVector<PB_BYTE, 256>;

// charset'language'value: the charset's code, and *value narrowed to the value
// part; -1 (and *value unchanged) when there are not three parts.
PB_CHARSET mime___Rfc2231DecodeCharset(Span *value)
{
    PB_INT first = 0;
    while (first < value->length && value->chars[first] != '\'')
        ++first;
    PB_INT second = first + 1;
    while (second < value->length && value->chars[second] != '\'')
        ++second;
    if (second >= value->length)
        return -1;
    Ref<PB_STRING> name = adopt(pbStringCreateFromCharsCopy(value->chars, first));
    PB_CHARSET charset = pbCharsetFromIanaName(name.get());
    if (PB_CHARSET_OK(charset))
        *value = {value->chars + second + 1, value->length - second - 1};
    return charset;
}

// Percent-decoded bytes appended to bytes; false for a character above 255 or
// when the bytes would outgrow a buffer.
bool mime___Rfc2231DecodeValue(Span value, Bytes &bytes)
{
    const PB_CHAR *c = value.chars;
    PB_INT n = value.length;
    for (PB_INT i = 0; i < n;) {
        if (static_cast<PB_INT>(bytes.size()) >= PB_BUFFER_MAX_LENGTH || c[i] > 255)
            return false;
        PB_INT high = -1, low = -1;
        if (c[i] == '%' && i < n - 2 && (high = pbUnicodeHexadecimalDigitValue(c[i + 1])) >= 0 &&
            (low = pbUnicodeHexadecimalDigitValue(c[i + 2])) >= 0) {
            bytes.push_back(static_cast<PB_BYTE>(high * 16 + low));
            i += 3;
        } else {
            bytes.push_back(static_cast<PB_BYTE>(c[i]));
            i += 1;
        }
    }
    return true;
}

// The text of bytes in charset, appended to *joined; false when the length
// would overflow. Empties bytes.
bool appendConverted(PB_STRING **joined, Bytes &bytes, PB_CHARSET charset)
{
    if (bytes.size() == 0)
        return true;
    Ref<PB_BUFFER> buffer = adopt(pbBufferCreateFromBytesCopy(bytes.data(), static_cast<PB_INT>(bytes.size())));
    bytes.clear();
    Ref<PB_STRING> text = adopt(pbCharsetConvertBufferToString(charset, buffer.get()));
    if (!PB_INT_ADD_OK(pbStringLength(*joined), pbStringLength(text.get())))
        return false;
    pbStringAppend(joined, text.get());
    return true;
}

// The value under name*n (and "*" when encoded) in the working dictionary, or null.
Ref<PB_STRING> segment(PB_DICT *working, Span name, PB_INT n, bool encoded)
{
    mime::SmallVector<PB_CHAR, 128> key;
    key.append(name.chars, static_cast<size_t>(name.length));
    key.push_back('*');
    char digits[24];
    int count = 0;
    for (uint64_t v = static_cast<uint64_t>(n); v || count == 0; v /= 10)
        digits[count++] = static_cast<char>('0' + v % 10);
    while (count > 0)
        key.push_back(static_cast<PB_CHAR>(digits[--count]));
    if (encoded)
        key.push_back('*');
    Ref<PB_STRING> text = adopt(pbStringCreateFromCharsCopy(key.data(), static_cast<PB_INT>(key.size())));
    return adopt(pbStringFrom(pbDictStringKey(working, text.get())));
}

// Joins the segments of the continuation whose segment 0 holds value; null when
// the entry is dropped.
PB_STRING *joinContinuation(PB_DICT *working, Span name, PB_STRING *value, bool extended)
{
    Ref<PB_STRING> joined = adopt(pbStringCreate());
    Bytes pending;
    PB_CHARSET charset = -1;
    if (extended) {
        Span rest = spanOf(value);
        charset = mime___Rfc2231DecodeCharset(&rest);
        if (!PB_CHARSET_OK(charset) || !mime___Rfc2231DecodeValue(rest, pending))
            return nullptr;
    } else {
        pbStringAppend(joined.addr(), value);
    }
    for (PB_INT n = 0; n < PB_INT_MAX;) { // stops at a gap, or at the largest number
        ++n;
        if (PB_CHARSET_OK(charset)) {
            if (Ref<PB_STRING> encoded = segment(working, name, n, true)) {
                if (!mime___Rfc2231DecodeValue(spanOf(encoded.get()), pending))
                    return nullptr;
                continue;
            }
            if (!appendConverted(joined.addr(), pending, charset))
                return nullptr;
        }
        Ref<PB_STRING> plain = segment(working, name, n, false);
        if (!plain)
            break;
        if (!PB_INT_ADD_OK(pbStringLength(joined.get()), pbStringLength(plain.get())))
            return nullptr;
        pbStringAppend(joined.addr(), plain.get());
    }
    if (PB_CHARSET_OK(charset) && !appendConverted(joined.addr(), pending, charset))
        return nullptr;
    return joined.release();
}

// The decoded text of one working entry, and its result name; null when the
// entry is dropped.
PB_STRING *decodeEntry(PB_DICT *working, PB_STRING *key, PB_STRING *value, Ref<PB_STRING> &resultName)
{
    static const PB_CHAR ends[] = {'*', '0', '*'};
    PB_INT suffix = pbStringEndsWithChars(key, ends, 3) ? 3 : pbStringEndsWithChars(key, ends, 2) ? 2
                    : pbStringEndsWithChars(key, ends, 1)                                    ? 1
                                                                                             : 0;
    Span name = {pbStringBacking(key), pbStringLength(key) - suffix};
    if (!mime___Rfc2231IsAttribute(name.chars, name.length))
        return nullptr;
    resultName = suffix ? adopt(pbStringCreateFromCharsCopy(name.chars, name.length)) : pb::retained(key);
    if (suffix == 0) {
        pb::retain(value);
        return value;
    }
    if (suffix == 1) {
        Span rest = spanOf(value);
        PB_CHARSET charset = mime___Rfc2231DecodeCharset(&rest);
        Bytes bytes;
        if (!PB_CHARSET_OK(charset) || !mime___Rfc2231DecodeValue(rest, bytes))
            return nullptr;
        Ref<PB_STRING> text = adopt(pbStringCreate());
        return appendConverted(text.addr(), bytes, charset) ? text.release() : nullptr;
    }
    return joinContinuation(working, name, value, suffix == 3);
}

// The text form of an object handed out as a new reference.
Ref<PB_STRING> textOf(PB_OBJ *taken)
{
    Ref<PB_OBJ> held = adopt(taken);
    return adopt(pbObjToString(held.get()));
}

bool allStrings(PB_DICT *dict)
{
    for (PB_INT i = 0; i < pbDictLength(dict); ++i)
        if (pbObjSort(adopt(pbDictValueAt(dict, i)).get()) != pbStringSort())
            return false;
    return true;
}

} // namespace

PB_DICT *mime___Rfc2231Decode(PB_DICT *source, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( source );
    PB_ASSERT( mo );
    Ref<PB_DICT> result = adopt(pbDictCreate());
    // The working dictionary holds the text forms; string values are their own.
    Ref<PB_DICT> working = pb::retained(source);
    if (!allStrings(source)) {
        working = adopt(pbDictCreate());
        for (PB_INT i = 0; i < pbDictLength(source); ++i) {
            Ref<PB_STRING> key = textOf(pbDictKeyAt(source, i)), value = textOf(pbDictValueAt(source, i));
            pbDictSetStringKey(working.addr(), key.get(), pbStringObj(value.get()));
        }
    }
    for (PB_INT i = 0; i < pbDictLength(working.get()); ++i) {
        Ref<PB_STRING> key = adopt(pbStringFrom(pbDictKeyAt(working.get(), i)));
        Ref<PB_STRING> value = adopt(pbStringFrom(pbDictValueAt(working.get(), i)));
        Ref<PB_STRING> name;
        if (Ref<PB_STRING> decoded = adopt(decodeEntry(working.get(), key.get(), value.get(), name)))
            pbDictSetStringKey(result.addr(), name.get(), pbStringObj(decoded.get()));
    }
    return result.release();
}

namespace {

// RFC 2231 attribute-char: written as it is inside an extended value.
bool isLiteralByte(PB_BYTE b)
{
    return b >= 33 && b <= 126 && !mime___CharIsTspecial(b) && b != '%' && b != '\'' && b != '*';
}

// Pieces of an ASCII value of at most maxLength characters each (-1: one piece);
// an empty value is one empty piece.
Ref<PB_VECTOR> plainSegments(PB_STRING *value, PB_INT maxLength)
{
    Ref<PB_VECTOR> segments = adopt(pbVectorCreate());
    PB_INT n = pbStringLength(value);
    if (maxLength == -1 || n <= maxLength) {
        pbVectorAppendString(segments.addr(), value);
        return segments;
    }
    for (PB_INT at = 0; at < n; at += maxLength) {
        Ref<PB_STRING> piece = adopt(pbStringCreateFromInner(value, at, pbIntMin(maxLength, n - at)));
        pbVectorAppendString(segments.addr(), piece.get());
    }
    return segments;
}

// The value as charset'' and percent escapes, cut before a segment would pass
// maxLength (-1: one segment); an escape is never split. Null when the charset
// cannot hold the value.
Ref<PB_VECTOR> extendedSegments(PB_STRING *value, PB_CHARSET charset, PB_INT maxLength)
{
    Ref<PB_BUFFER> bytes = adopt(pbCharsetConvertStringToBuffer(charset, value));
    if (!bytes)
        return {};
    Ref<PB_VECTOR> segments = adopt(pbVectorCreate());
    Ref<PB_STRING> current = adopt(pbStringCreateFromFormatCstr("%~s''", -1, pbCharsetToIanaName(charset)));
    PB_INT length = pbStringLength(current.get());
    auto startSegment = [&](PB_INT lengthAfter) {
        pbVectorAppendString(segments.addr(), current.get());
        current = adopt(pbStringCreate());
        length = lengthAfter;
    };
    const PB_BYTE *b = pbBufferBacking(bytes.get());
    for (PB_INT i = 0, n = pbBufferLength(bytes.get()); i < n; ++i) {
        if (isLiteralByte(b[i])) {
            if (maxLength != -1 && length >= maxLength)
                startSegment(1);
            else
                length += 1;
            pbStringAppendChar(current.addr(), b[i]);
        } else {
            if (maxLength != -1 && length >= maxLength - 2)
                startSegment(3);
            else
                length += 3;
            pbStringAppendFormatCstr(current.addr(), "%%%^02!16i", -1, static_cast<PB_INT>(b[i]));
        }
    }
    pbVectorAppendString(segments.addr(), current.get());
    return segments;
}

} // namespace

PB_DICT *mime___Rfc2231Encode(PB_DICT *source, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( source );
    PB_ASSERT( mo );
    PB_CHARSET charset = mimeOptionsRfc2231Charset(mo);
    PB_INT maxLength = mimeOptionsRfc2231MaxSegmentLength(mo);
    Ref<PB_DICT> result = adopt(pbDictCreate());
    for (PB_INT i = 0; i < pbDictLength(source); ++i) {
        Ref<PB_STRING> name = textOf(pbDictKeyAt(source, i)), value = textOf(pbDictValueAt(source, i));
        if (!mime___Rfc2231IsAttribute(pbStringBacking(name.get()), pbStringLength(name.get())))
            continue;
        bool plain = mime::chars::isAscii(pbStringBacking(value.get()), pbStringLength(value.get()));
        Ref<PB_VECTOR> segments =
            plain ? plainSegments(value.get(), maxLength) : extendedSegments(value.get(), charset, maxLength);
        if (!segments)
            continue;
        const char *suffix = plain ? "" : "*";
        PB_INT count = pbVectorLength(segments.get());
        for (PB_INT n = 0; n < count; ++n) {
            Ref<PB_STRING> key = adopt(count == 1 ? pbStringCreateFromFormatCstr("%s%lc", -1, name.get(), suffix)
                                                  : pbStringCreateFromFormatCstr("%s*%i%lc", -1, name.get(), n, suffix));
            Ref<PB_OBJ> segment = adopt(pbVectorObjAt(segments.get(), n));
            pbDictSetStringKey(result.addr(), key.get(), segment.get());
        }
    }
    return result.release();
}
