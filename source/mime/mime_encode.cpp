#include <mime/mime_content_id.h>
#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_encode.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_text.hpp>
#include <rfc/rfc_base.h>
#include <rfc/rfc_quop.h>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

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

// Quoted-printable writes "=", DEL, bytes of 128 and more and control bytes
// but tab, CR and LF as three-character escapes, and every other byte as at
// least one character.
bool alwaysEscaped(PB_BYTE b)
{
    return b == '=' || b >= 127 || (b < 32 && b != '\t' && b != '\r' && b != '\n');
}

// The escaped bytes among n (at most kBlock).
constexpr PB_INT kBlock = 4096;

PB_INT escapedScalar(const PB_BYTE *b, PB_INT n)
{
    PB_INT count = 0;
    for (PB_INT i = 0; i < n; ++i)
        count += alwaysEscaped(b[i]);
    return count;
}

#if defined(__x86_64__) && defined(__GNUC__)
// 32 bytes at a time: a byte's class is looked up by its low and its high
// nibble, and it is escaped when the two lookups share a bit. Classes by high
// nibble: 1 controls 0x00-0x0F (but tab, LF and CR), 2 controls 0x10-0x1F,
// 4 "=" (0x3D), 8 DEL (0x7F), 16 every byte from 0x80.
__attribute__((target("avx2"))) PB_INT escapedAvx2(const PB_BYTE *b, PB_INT n)
{
    const __m256i byLow = _mm256_setr_epi8(19, 19, 19, 19, 19, 19, 19, 19, 19, 18, 18, 19, 19, 22, 19, 27, 19, 19, 19,
                                           19, 19, 19, 19, 19, 19, 18, 18, 19, 19, 22, 19, 27);
    const __m256i byHigh = _mm256_setr_epi8(1, 2, 0, 4, 0, 0, 0, 8, 16, 16, 16, 16, 16, 16, 16, 16, 1, 2, 0, 4, 0, 0, 0,
                                            8, 16, 16, 16, 16, 16, 16, 16, 16);
    const __m256i nibble = _mm256_set1_epi8(0x0F), zero = _mm256_setzero_si256();
    __m256i plain = zero; // per lane: bytes not escaped, at most kBlock / 32
    PB_INT i = 0;
    for (; i + 32 <= n; i += 32) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(b + i));
        __m256i low = _mm256_shuffle_epi8(byLow, _mm256_and_si256(v, nibble));
        __m256i high = _mm256_shuffle_epi8(byHigh, _mm256_and_si256(_mm256_srli_epi16(v, 4), nibble));
        plain = _mm256_sub_epi8(plain, _mm256_cmpeq_epi8(_mm256_and_si256(low, high), zero));
    }
    __m256i sums = _mm256_sad_epu8(plain, zero);
    PB_INT notEscaped = _mm256_extract_epi64(sums, 0) + _mm256_extract_epi64(sums, 1) + _mm256_extract_epi64(sums, 2) +
                        _mm256_extract_epi64(sums, 3);
    return i - notEscaped + escapedScalar(b + i, n - i);
}
#endif

PB_INT(*const escaped)
(const PB_BYTE *, PB_INT) = [] {
#if defined(__x86_64__) && defined(__GNUC__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        return escapedAvx2;
#endif
    return escapedScalar;
}();

// True when the quoted-printable text of the n bytes cannot be shorter than
// limit: n + 2 per escaped byte reaches it. Counting stops as soon as it does,
// which for binary data is after about a third of the bytes, and gives up when
// the escapes seen so far are too few to get there at their rate (text): the
// encoding then decides.
bool quotedPrintableAtLeast(const PB_BYTE *b, PB_INT n, PB_INT limit)
{
    PB_INT need = limit - n; // two characters for each escaped byte beyond one
    if (need <= 0)
        return true;
    PB_INT extra = 0;
    for (PB_INT i = 0; i < n;) {
        PB_INT block = n - i < kBlock ? n - i : kBlock;
        extra += 2 * escaped(b + i, block);
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
    if (pbBufferBitLength(body) % 8 != 0 || quotedPrintableAtLeast(pbBufferBacking(body), n, limit))
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
        set(mimeEntitySetContentTransferEncoding, mimeContentTransferEncodingEncode(coded.encoding, opt, 27));
    if (contentType)
        set(mimeEntitySetContentType, mimeContentTypeEncode(contentType, opt, 14));
    if (contentDisposition)
        set(mimeEntitySetContentDisposition, mimeContentDispositionEncode(contentDisposition, opt, 21));
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
