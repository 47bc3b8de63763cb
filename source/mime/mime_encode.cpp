#include <mime/mime_content_id.h>
#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_encode.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_text.hpp>
#include <rfc/rfc_base.h>
#include <rfc/rfc_quop.h>

using pb::adopt;
using pb::Ref;

namespace {

// The length of the base64 text of n bytes: four characters per three bytes or
// part of them, in lines of lineLength characters (0 or -1: one line) with a
// CR LF between lines and none after the last.
PB_INT base64Length(PB_INT n, PB_INT lineLength)
{
    PB_INT chars = (n / 3 + (n % 3 != 0)) * 4;
    if (lineLength <= 0 || chars == 0)
        return chars;
    return chars + 2 * ((chars - 1) / lineLength);
}

// Escapes are counted a block at a time, so that counting can stop early.
constexpr PB_INT kBlock = 4096;

// True when the quoted-printable text of body cannot be shorter than limit:
// its length plus 2 per byte the encoder always escapes reaches it. Counting
// stops as soon as it does, which for binary data is after about a third of
// the bytes, and gives up when the escapes seen so far are too few to get there
// at their rate (text): the encoding then decides.
bool quotedPrintableAtLeast(PB_BUFFER *body, PB_INT limit)
{
    PB_INT n = pbBufferLength(body);
    PB_INT need = limit - n; // two characters for each escaped byte beyond one
    if (need <= 0)
        return true;
    PB_INT extra = 0;
    for (PB_INT i = 0; i < n;) {
        PB_INT block = n - i < kBlock ? n - i : kBlock;
        extra += 2 * rfcQuopEscapeCount(body, i, block);
        i += block;
        if (extra >= need)
            return true;
        if (static_cast<double>(extra) * static_cast<double>(n) <
            0.5 * static_cast<double>(need) * static_cast<double>(i))
            return false;
    }
    return false;
}

struct Coded {
    MIME_CONTENT_TRANSFER_ENCODING encoding = -1;
    Ref<PB_BUFFER> bytes;
};

Coded base64(PB_BUFFER *body, RFC_BASE_OPTIONS *options)
{
    Ref<PB_BUFFER> baseBuffer = adopt(rfcBaseEncodeWithOptions(body, RFC_BASE_VARIANT_BASE64, options));
    PB_ASSERT( baseBuffer );
    return {MIME_CONTENT_TRANSFER_ENCODING_BASE64, std::move(baseBuffer)};
}

// The transfer encoding of a body and the bytes to store.
Coded transferCoded(PB_BUFFER *body, MIME_OPTIONS *opt)
{
    MIME_FLAGS flags = mimeOptionsFlags(opt);
    if (flags & MIME_FLAG_GENERATE_EIGHT_BIT_BODY)
        return {MIME_CONTENT_TRANSFER_ENCODING_BINARY, pb::retained(body)};
    if (mimeContentTransferEncodingCheck(MIME_CONTENT_TRANSFER_ENCODING_7BIT, body))
        return {MIME_CONTENT_TRANSFER_ENCODING_7BIT, pb::retained(body)};
    Ref<RFC_BASE_OPTIONS> baseOptions = adopt(mimeOptionsRfcBaseOptions(opt));
    if (flags & MIME_FLAG_GENERATE_DISABLE_QUOTED_PRINTABLE)
        return base64(body, baseOptions.get());
    // Quoted-printable wins only when strictly shorter. Base64's length is known
    // beforehand; encode quoted-printable only when it may be shorter (and when it
    // can encode the body at all: whole bytes).
    PB_INT n = pbBufferLength(body);
    PB_INT limit = base64Length(n, rfcBaseOptionsOutputLineLength(baseOptions.get()));
    if (pbBufferBitLength(body) % 8 != 0 || quotedPrintableAtLeast(body, limit))
        return base64(body, baseOptions.get());
    Ref<RFC_QUOP_OPTIONS> quopOptions = adopt(mimeOptionsRfcQuopOptions(opt));
    Ref<PB_BUFFER> quop = adopt(rfcQuopEncodeWithOptions(body, quopOptions.get()));
    if (quop && pbBufferLength(quop.get()) < limit)
        return {MIME_CONTENT_TRANSFER_ENCODING_QUOTED_PRINTABLE, std::move(quop)};
    return base64(body, baseOptions.get());
}

} // namespace

MIME_ENTITY *mimeEncode(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                        MIME_CONTENT_DISPOSITION *contentDisposition, PB_STRING *optionalContentId) noexcept
{
    PB_ASSERT( opt );
    PB_ASSERT( !optionalContentId || mimeContentIdOk( optionalContentId ) );
    Coded coded;
    if (body)
        coded = transferCoded(body, opt);
    Ref<MIME_ENTITY> ent = adopt(mimeEntityCreate());
    auto set = [&](void (*setter)(MIME_ENTITY **, PB_STRING *), PB_STRING *text) {
        Ref<PB_STRING> held = adopt(text);
        setter(ent.addr(), held.get());
    };
    if (body)
        set(mimeEntitySetContentTransferEncoding,
            mimeContentTransferEncodingEncode(coded.encoding, opt, MIME_FIRST_LINE_OFFSET_CONTENT_TRANSFER_ENCODING));
    if (contentType)
        set(mimeEntitySetContentType, mimeContentTypeEncode(contentType, opt, MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
    if (contentDisposition)
        set(mimeEntitySetContentDisposition,
            mimeContentDispositionEncode(contentDisposition, opt, MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION));
    if (optionalContentId)
        set(mimeEntitySetContentId, mimeContentIdEncode(optionalContentId));
    if (body)
        mimeEntitySetBody(ent.addr(), coded.bytes.get());
    return ent.release();
}

MIME_ENTITY *mimeEncodeCstr(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                            MIME_CONTENT_DISPOSITION *contentDisposition, const char *optionalContentId,
                            PB_INT length) noexcept
{
    return mimeEncode(opt, body, contentType, contentDisposition, pb::Text::optional(optionalContentId, length));
}

MIME_ENTITY *mimeEncodeWcstr(MIME_OPTIONS *opt, PB_BUFFER *body, MIME_CONTENT_TYPE *contentType,
                             MIME_CONTENT_DISPOSITION *contentDisposition, const wchar_t *optionalContentId,
                             PB_INT length) noexcept
{
    return mimeEncode(opt, body, contentType, contentDisposition, pb::Text::optional(optionalContentId, length));
}
