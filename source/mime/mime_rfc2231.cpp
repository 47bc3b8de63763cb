#include <mime/mime_char.h>
#include <mime/mime_char.hpp>
#include <mime/mime_rfc2231.h>
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
PB_BOOL mime___Rfc2231IsAttribute(PB_STRING *s)
{
    const PB_CHAR *c = pbStringBacking(s);
    PB_INT n = pbStringLength(s);
    for (PB_INT i = 0; i < n; ++i)
        if (c[i] > 127 || c[i] == ' ' || mime___CharIsCtl(c[i]) || mime___CharIsTspecial(c[i]) || c[i] == '*' ||
            c[i] == '\'' || c[i] == '%')
            return PB_FALSE;
    return n > 0;
}

// charset'language'value: the charset's code, and *value replaced by the value
// part; -1 (and *value unchanged) when there are not three parts.
PB_CHARSET mime___Rfc2231DecodeCharset(PB_STRING **value)
{
    Ref<PB_VECTOR> parts = adopt(pbStringSplitChar(*value, '\'', 3));
    if (pbVectorLength(parts.get()) != 3)
        return -1;
    Ref<PB_STRING> name = adopt(pbStringFrom(pbVectorObjAt(parts.get(), 0)));
    PB_CHARSET charset = pbCharsetFromIanaName(name.get());
    if (PB_CHARSET_OK(charset)) {
        pbStringRelease(*value);
        *value = pbStringFrom(pbVectorObjAt(parts.get(), 2));
    }
    return charset;
}

// Percent-decoded bytes; null for a character above 255 or a full buffer.
PB_BUFFER *mime___Rfc2231DecodeValue(PB_STRING *value)
{
    const PB_CHAR *c = pbStringBacking(value);
    PB_INT n = pbStringLength(value);
    Ref<PB_BUFFER> bytes = adopt(pbBufferCreate());
    for (PB_INT i = 0; i < n;) {
        if (pbBufferSpace(bytes.get()) == 0 || c[i] > 255)
            return nullptr;
        PB_INT high = -1, low = -1;
        if (c[i] == '%' && i < n - 2 && (high = pbUnicodeHexadecimalDigitValue(c[i + 1])) >= 0 &&
            (low = pbUnicodeHexadecimalDigitValue(c[i + 2])) >= 0) {
            pbBufferAppendByte(bytes.addr(), static_cast<PB_BYTE>(high * 16 + low));
            i += 3;
        } else {
            pbBufferAppendByte(bytes.addr(), static_cast<PB_BYTE>(c[i]));
            i += 1;
        }
    }
    return bytes.release();
}

// The text form of an object handed out as a new reference.
Ref<PB_STRING> textOf(PB_OBJ *taken)
{
    Ref<PB_OBJ> held = adopt(taken);
    return adopt(pbObjToString(held.get()));
}

Ref<PB_STRING> lookup(PB_DICT *working, const char *format, PB_STRING *name, PB_INT n)
{
    Ref<PB_STRING> key = adopt(pbStringCreateFromFormatCstr(format, -1, name, n));
    return adopt(pbStringFrom(pbDictStringKey(working, key.get())));
}

// Appends text to *joined; false when the length would overflow.
bool appendText(PB_STRING **joined, PB_STRING *text)
{
    if (!PB_INT_ADD_OK(pbStringLength(*joined), pbStringLength(text)))
        return false;
    pbStringAppend(joined, text);
    return true;
}

// Converts and empties the pending bytes into *joined.
bool flushPending(PB_STRING **joined, PB_BUFFER **pending, PB_CHARSET charset)
{
    if (pbBufferLength(*pending) == 0)
        return true;
    Ref<PB_STRING> text = adopt(pbCharsetConvertBufferToString(charset, *pending));
    pbBufferClear(pending);
    return appendText(joined, text.get());
}

// Joins the segments of the continuation whose segment 0 holds value; null when
// the entry is dropped.
PB_STRING *joinContinuation(PB_DICT *working, PB_STRING *name, PB_STRING *value, bool extended)
{
    Ref<PB_STRING> joined = adopt(pbStringCreate());
    Ref<PB_BUFFER> pending = adopt(pbBufferCreate());
    PB_CHARSET charset = -1;
    if (extended) {
        Ref<PB_STRING> rest = pb::retained(value);
        charset = mime___Rfc2231DecodeCharset(rest.addr());
        if (!PB_CHARSET_OK(charset))
            return nullptr;
        pending = adopt(mime___Rfc2231DecodeValue(rest.get()));
        if (!pending)
            return nullptr;
    } else {
        pbStringAppend(joined.addr(), value);
    }
    for (PB_INT n = 0; n < PB_INT_MAX;) { // stops at a gap, or at the largest number
        ++n;
        if (PB_CHARSET_OK(charset)) {
            if (Ref<PB_STRING> encoded = lookup(working, "%s*%i*", name, n)) {
                Ref<PB_BUFFER> bytes = adopt(mime___Rfc2231DecodeValue(encoded.get()));
                if (!bytes || pbBufferSpace(pending.get()) < pbBufferLength(bytes.get()))
                    return nullptr;
                pbBufferAppend(pending.addr(), bytes.get());
                continue;
            }
            if (!flushPending(joined.addr(), pending.addr(), charset))
                return nullptr;
        }
        Ref<PB_STRING> plain = lookup(working, "%s*%i", name, n);
        if (!plain)
            break;
        if (!appendText(joined.addr(), plain.get()))
            return nullptr;
    }
    if (PB_CHARSET_OK(charset) && !flushPending(joined.addr(), pending.addr(), charset))
        return nullptr;
    return joined.release();
}

// The decoded text of one working entry under *name; null when it is dropped.
PB_STRING *decodeEntry(PB_DICT *working, PB_STRING *key, PB_STRING *value, Ref<PB_STRING> &name)
{
    static const PB_CHAR ends[] = {'*', '0', '*'};
    PB_INT length = pbStringLength(key);
    PB_INT suffix = pbStringEndsWithChars(key, ends, 3) ? 3 : pbStringEndsWithChars(key, ends, 2) ? 2
                    : pbStringEndsWithChars(key, ends, 1)                                    ? 1
                                                                                             : 0;
    name = adopt(pbStringCreateFromLeading(key, length - suffix));
    if (!mime___Rfc2231IsAttribute(name.get()))
        return nullptr;
    if (suffix == 0) {
        pb::retain(value);
        return value;
    }
    if (suffix == 1) {
        Ref<PB_STRING> rest = pb::retained(value);
        PB_CHARSET charset = mime___Rfc2231DecodeCharset(rest.addr());
        if (!PB_CHARSET_OK(charset))
            return nullptr;
        Ref<PB_BUFFER> bytes = adopt(mime___Rfc2231DecodeValue(rest.get()));
        return bytes ? pbCharsetConvertBufferToString(charset, bytes.get()) : nullptr;
    }
    return joinContinuation(working, name.get(), value, suffix == 3);
}

} // namespace

PB_DICT *mime___Rfc2231Decode(PB_DICT *source, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( source );
    PB_ASSERT( mo );
    Ref<PB_DICT> result = adopt(pbDictCreate());
    Ref<PB_DICT> working = adopt(pbDictCreate());
    for (PB_INT i = 0; i < pbDictLength(source); ++i) {
        Ref<PB_STRING> key = textOf(pbDictKeyAt(source, i)), value = textOf(pbDictValueAt(source, i));
        pbDictSetStringKey(working.addr(), key.get(), pbStringObj(value.get()));
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

bool isAscii(PB_STRING *s)
{
    const PB_CHAR *c = pbStringBacking(s);
    for (PB_INT i = 0, n = pbStringLength(s); i < n; ++i)
        if (c[i] > 127)
            return false;
    return true;
}

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
        if (!mime___Rfc2231IsAttribute(name.get()))
            continue;
        bool plain = isAscii(value.get());
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
