#include <mime/mime_char.hpp>
#include <mime/mime_charset_labels.hpp>
#include <mime/mime_encoded_words.h>
#include <mime/mime_small_vector.hpp>
#include <pb/pb_buffer.h>
#include <pb/pb_charset.h>
#include <pb/pb_ref.hpp>
#include <rfc/rfc_base.h>

namespace {

using pb::adopt;
using pb::Ref;
using Bytes = mime::SmallVector<PB_BYTE, 256>;

bool isSpace(PB_CHAR c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The index of the next "?" in c[from, n) before any white space, or -1.
PB_INT questionMark(const PB_CHAR *c, PB_INT from, PB_INT n)
{
    for (PB_INT i = from; i < n && !isSpace(c[i]); ++i)
        if (c[i] == '?')
            return i;
    return -1;
}

// Q text as bytes; false for a character beyond Latin-1.
bool qBytes(const PB_CHAR *c, PB_INT n, Bytes &bytes)
{
    for (PB_INT i = 0; i < n; ++i) {
        PB_INT high = -1, low = -1;
        if (c[i] == '_') {
            bytes.push_back(' ');
        } else if (c[i] == '=' && i + 2 < n && (high = mime::chars::hexValue(c[i + 1])) >= 0 &&
                   (low = mime::chars::hexValue(c[i + 2])) >= 0) {
            bytes.push_back(static_cast<PB_BYTE>(high * 16 + low));
            i += 2;
        } else if (c[i] > 255) {
            return false;
        } else {
            bytes.push_back(static_cast<PB_BYTE>(c[i]));
        }
    }
    return true;
}

// The text of the encoded word at c[at] that ends before c[*end] ("?="), or
// null when it is none; *end is then set past its "?=".
PB_STRING *decodedWord(const PB_CHAR *c, PB_INT n, PB_INT at, PB_INT *end)
{
    PB_INT mark1 = questionMark(c, at + 2, n);
    if (mark1 < 0 || mark1 == at + 2 || mark1 + 2 >= n || c[mark1 + 2] != '?')
        return nullptr;
    PB_CHAR encoding = c[mark1 + 1] | 0x20;
    PB_INT mark3 = questionMark(c, mark1 + 3, n);
    if ((encoding != 'b' && encoding != 'q') || mark3 < 0 || mark3 + 1 >= n || c[mark3 + 1] != '=')
        return nullptr;
    PB_INT charsetEnd = at + 2;
    while (charsetEnd < mark1 && c[charsetEnd] != '*')
        ++charsetEnd;
    bool registered = false;
    PB_CHARSET charset = mime::charsetFromNameOrLabel(c + at + 2, charsetEnd - at - 2, registered);
    if (!PB_CHARSET_OK(charset))
        return nullptr;
    const PB_CHAR *text = c + mark1 + 3;
    PB_INT length = mark3 - mark1 - 3;
    Bytes bytes;
    if (encoding == 'q' ? !qBytes(text, length, bytes) : false)
        return nullptr;
    Ref<PB_BUFFER> raw;
    if (encoding == 'b') {
        for (PB_INT i = 0; i < length; ++i)
            bytes.push_back(static_cast<PB_BYTE>(text[i] < 128 ? text[i] : '?'));
        Ref<PB_BUFFER> base64 = adopt(pbBufferCreateFromBytesCopy(bytes.data(), static_cast<PB_INT>(bytes.size())));
        raw = adopt(rfcBaseDecodeTolerant(base64.get(), RFC_BASE_VARIANT_BASE64, nullptr));
    } else {
        raw = adopt(pbBufferCreateFromBytesCopy(bytes.data(), static_cast<PB_INT>(bytes.size())));
    }
    *end = mark3 + 2;
    return pbCharsetConvertBufferToString(charset, raw.get());
}

bool allSpace(const PB_CHAR *c, PB_INT from, PB_INT to)
{
    for (PB_INT i = from; i < to; ++i)
        if (!isSpace(c[i]))
            return false;
    return true;
}

} // namespace

PB_STRING *mimeEncodedWordsDecode(PB_STRING *text) noexcept
{
    PB_ASSERT( text );
    const PB_CHAR *c = pbStringBacking(text);
    PB_INT n = pbStringLength(text);
    Ref<PB_STRING> out = adopt(pbStringCreate());
    PB_INT copied = 0;     // c[0, copied) is in out
    PB_INT afterWord = -1; // where the last encoded word ended
    for (PB_INT at = 0; at + 1 < n; ++at) {
        if (c[at] != '=' || c[at + 1] != '?')
            continue;
        PB_INT end = 0;
        Ref<PB_STRING> word = adopt(decodedWord(c, n, at, &end));
        if (!word)
            continue;
        if (!(copied == afterWord && allSpace(c, copied, at)))
            pbStringAppendChars(out.addr(), c + copied, at - copied);
        pbStringAppend(out.addr(), word.get());
        copied = afterWord = end;
        at = end - 1;
    }
    pbStringAppendChars(out.addr(), c + copied, n - copied);
    return out.release();
}
