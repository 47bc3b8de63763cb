#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_defect.hpp>
#include <mime/mime_shf_token_vector.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_text.hpp>

#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

using pb::adopt;
using pb::Ref;

const char *const kNames[] = {"7bit", "8bit", "binary", "quoted-printable", "base64"};

constexpr size_t kMaxLine = 998; // bytes before the CR LF of a line

// Scalar check of bytes [from, n): the rules as written, with the length of the
// current line carried in. Used for the tail after the vector blocks and where
// SSE2 is missing.
bool lineCheck(const uint8_t *b, size_t from, size_t n, bool allowHigh, size_t &line)
{
    for (size_t i = from; i < n; ++i) {
        uint8_t c = b[i];
        if (c == '\r') {
            if (i + 1 == n || b[i + 1] != '\n')
                return false;
            ++i;
            line = 0;
        } else if (c == '\n' || c == 0 || (c >= 128 && !allowHigh) || line == kMaxLine) {
            return false;
        } else {
            ++line;
        }
    }
    return true;
}

// 7bit and 8bit: complete CR LF lines of at most 998 bytes without zero bytes
// (and, under 7bit, without bytes of 128 and more).
bool linesOk(const uint8_t *b, size_t n, bool allowHigh)
{
    if (n == 0)
        return true;
    if (n < 2 || b[n - 2] != '\r' || b[n - 1] != '\n' || b[0] == '\n')
        return false;
    size_t i = 0;
    size_t line = 0; // bytes since the last line end, at position i
#if defined(__SSE2__)
    // 64 bytes at a time: no zero (or high) byte; every CR followed by an LF and
    // every LF preceded by a CR, seen as the CR mask equal to the LF mask one byte
    // ahead; and no run of more than 998 bytes and a CR without an LF.
    const __m128i zero = _mm_setzero_si128(), cr = _mm_set1_epi8('\r'), lf = _mm_set1_epi8('\n');
    for (; n - i >= 65; i += 64) {
        __m128i bad = zero;
        uint64_t lfs = 0;
        for (size_t k = 0; k < 64; k += 16) {
            __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(b + i + k));
            __m128i ahead = _mm_loadu_si128(reinterpret_cast<const __m128i *>(b + i + k + 1));
            bad = _mm_or_si128(bad, _mm_cmpeq_epi8(v, zero));
            if (!allowHigh)
                bad = _mm_or_si128(bad, v);
            bad = _mm_or_si128(bad, _mm_xor_si128(_mm_cmpeq_epi8(v, cr), _mm_cmpeq_epi8(ahead, lf)));
            lfs |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, lf)))) << k;
        }
        if (_mm_movemask_epi8(bad))
            return false;
        if (lfs) {
            // Bytes before the first LF continue the line; after the last LF a new one starts.
            if (line + static_cast<size_t>(__builtin_ctzll(lfs)) > kMaxLine + 1)
                return false;
            line = 63 - static_cast<size_t>(63 - __builtin_clzll(lfs));
        } else if ((line += 64) > kMaxLine + 1) {
            return false;
        }
    }
    // The scalar rules count content bytes only: take the CR that may end the run back.
    if (i > 0 && b[i - 1] == '\r') {
        --i;
        --line;
    }
    if (line > kMaxLine)
        return false;
#endif
    return lineCheck(b, i, n, allowHigh, line);
}

} // namespace

PB_STRING *mimeContentTransferEncodingToString(MIME_CONTENT_TRANSFER_ENCODING cte) noexcept
{
    PB_ASSERT( MIME_CONTENT_TRANSFER_ENCODING_OK( cte ) );
    return pbStringCreateFromCstr(kNames[cte], -1);
}

MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecode(PB_STRING *cte, MIME_OPTIONS *mo) noexcept
{
    PB_ASSERT( cte );
    PB_ASSERT( mo );
    return mimeContentTransferEncodingTryDecodeWithDefect(cte, mo, nullptr);
}

namespace {

// The encoding named by the value, or -1.
MIME_CONTENT_TRANSFER_ENCODING named(PB_STRING *cte)
{
    Ref<PB_VECTOR> tokens = adopt(mimeShfTokenVectorTryDecode(cte));
    if (!tokens)
        return -1;
    mimeShfTokenVectorDelComments(tokens.addr());
    if (pbVectorLength(tokens.get()) != 1)
        return -1;
    Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenFrom(pbVectorObjAt(tokens.get(), 0)));
    MIME_SHF_TOKEN_TYPE type = mimeShfTokenType(tok.get());
    if (type != MIME_SHF_TOKEN_TYPE_TOKEN && type != MIME_SHF_TOKEN_TYPE_QUOTED_STRING)
        return -1;
    Ref<PB_STRING> name = adopt(mimeShfTokenValue(tok.get()));
    for (MIME_CONTENT_TRANSFER_ENCODING i = 0; i < 5; ++i)
        if (pbStringEqualsCaseFoldCstr(name.get(), kNames[i], -1))
            return i;
    return -1;
}

} // namespace

MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecodeWithDefect(PB_STRING *cte, MIME_OPTIONS *mo,
                                                                              MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( cte );
    PB_ASSERT( mo );
    mime::clearDefect(defect);
    MIME_CONTENT_TRANSFER_ENCODING result = named(cte);
    if (result < 0)
        mime::report(defect, MIME_DEFECT_TRANSFER_ENCODING_INVALID, 0);
    return result;
}

PB_STRING *mimeContentTransferEncodingEncode(MIME_CONTENT_TRANSFER_ENCODING cte, MIME_OPTIONS *mo,
                                             PB_INT firstLineOffset) noexcept
{
    Ref<PB_STRING> name = adopt(mimeContentTransferEncodingToString(cte));
    Ref<MIME_SHF_TOKEN> tok = adopt(mimeShfTokenCreateRawValue(name.get()));
    Ref<PB_VECTOR> tokens = adopt(pbVectorCreate());
    pbVectorAppendObj(tokens.addr(), mimeShfTokenObj(tok.get()));
    return mimeShfTokenVectorEncode(tokens.get(), mo, firstLineOffset);
}

PB_BOOL mimeContentTransferEncodingCheck(MIME_CONTENT_TRANSFER_ENCODING cte, PB_BUFFER *buf) noexcept
{
    PB_ASSERT( MIME_CONTENT_TRANSFER_ENCODING_OK( cte ) );
    PB_ASSERT( buf );
    if (pbBufferBitLength(buf) % 8 != 0)
        return PB_FALSE;
    if (cte != MIME_CONTENT_TRANSFER_ENCODING_7BIT && cte != MIME_CONTENT_TRANSFER_ENCODING_8BIT)
        return PB_TRUE;
    return linesOk(pbBufferBacking(buf), static_cast<size_t>(pbBufferLength(buf)),
                   cte == MIME_CONTENT_TRANSFER_ENCODING_8BIT);
}

MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecodeCstr(const char *text, PB_INT length,
                                                                        MIME_OPTIONS *mo) noexcept
{
    return mimeContentTransferEncodingTryDecode(pb::Text(text, length), mo);
}

MIME_CONTENT_TRANSFER_ENCODING mimeContentTransferEncodingTryDecodeWcstr(const wchar_t *text, PB_INT length,
                                                                         MIME_OPTIONS *mo) noexcept
{
    return mimeContentTransferEncodingTryDecode(pb::Text(text, length), mo);
}
