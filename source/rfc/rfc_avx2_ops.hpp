// Internal: the inner loops of the codecs with AVX2 intrinsics. Included only by
// the vector builds (rfc_kernels_avx2.cpp, rfc_kernels_avx512.cpp), which are
// compiled for those instruction sets; internal linkage keeps each build's
// instructions to itself.
#pragma once

#include <rfc/rfc_scalar_ops.hpp>

#include <immintrin.h>

namespace rfc {
namespace {
namespace Avx2 {

// --- base64 encoding: 24 bytes to 32 characters per step -----------------------

// Lane 0 holds bytes 0-11 at positions 0-11, lane 1 bytes 12-23 at positions 4-15
// (loaded from in + 8, so no byte beyond in[23] is read). Each group of three
// bytes a b c goes to a 32-bit slot as b a c b, ready for the shifts below.
inline __m256i base64LoadGroups(const uint8_t *in)
{
    __m256i v = _mm256_loadu2_m128i(reinterpret_cast<const __m128i *>(in + 8), reinterpret_cast<const __m128i *>(in));
    return _mm256_shuffle_epi8(v, _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, //
                                                   5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14));
}

// Splits each slot into four sextets, one per byte.
inline __m256i base64Sextets(__m256i slots)
{
    __m256i t0 = _mm256_and_si256(slots, _mm256_set1_epi32(0x0fc0fc00));
    __m256i t1 = _mm256_mulhi_epu16(t0, _mm256_set1_epi32(0x04000040));
    __m256i t2 = _mm256_and_si256(slots, _mm256_set1_epi32(0x003f03f0));
    __m256i t3 = _mm256_mullo_epi16(t2, _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(t1, t3);
}

// Sextet to character by adding an offset chosen by range: 0-25 +65, 26-51 +71,
// 52-61 -4, 62 -19, 63 -16.
inline __m256i base64Characters(__m256i sextets)
{
    const __m256i offsets = _mm256_setr_epi8(65, 71, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 0, 0, //
                                             65, 71, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 0, 0);
    __m256i index = _mm256_subs_epu8(sextets, _mm256_set1_epi8(51));
    __m256i above25 = _mm256_cmpgt_epi8(sextets, _mm256_set1_epi8(25));
    index = _mm256_sub_epi8(index, above25);
    return _mm256_add_epi8(sextets, _mm256_shuffle_epi8(offsets, index));
}

inline void base64EncodeStep(const uint8_t *in, uint8_t *out)
{
    __m256i chars = base64Characters(base64Sextets(base64LoadGroups(in)));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), chars);
}

// --- base64 decoding: 32 characters to 24 bytes per step -----------------------

// A character is outside the alphabet when the class bits of its low nibble and
// of its high nibble meet. High nibble classes: 2 (+ /), 3 (digits), 4 and 6
// (letters from 1), 5 and 7 (letters up to A), everything else.
inline __m256i base64Invalid(__m256i chars, __m256i highNibbles)
{
    const __m256i lowClass = _mm256_setr_epi8(
        0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A, //
        0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m256i highClass = _mm256_setr_epi8(
        0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, //
        0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    __m256i lo = _mm256_shuffle_epi8(lowClass, _mm256_and_si256(chars, _mm256_set1_epi8(0x0f)));
    __m256i hi = _mm256_shuffle_epi8(highClass, highNibbles);
    return _mm256_cmpgt_epi8(_mm256_and_si256(lo, hi), _mm256_setzero_si256());
}

// Character to sextet by an offset chosen by the high nibble ("/" by its own).
inline __m256i base64Values(__m256i chars, __m256i highNibbles)
{
    const __m256i offsets = _mm256_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0, //
                                             0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0);
    __m256i isSlash = _mm256_cmpeq_epi8(chars, _mm256_set1_epi8('/'));
    __m256i offset = _mm256_shuffle_epi8(offsets, _mm256_add_epi8(isSlash, highNibbles));
    return _mm256_add_epi8(chars, offset);
}

// Packs four sextets per 32-bit slot into three bytes; 24 bytes land in the low
// 24 bytes of the result.
inline __m256i base64Pack(__m256i values)
{
    __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    __m256i words = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    __m256i bytes =
        _mm256_shuffle_epi8(words, _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, //
                                                    2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
}

// Decodes 32 characters when all are in the alphabet and returns 0; otherwise
// writes nothing and returns the mask of the characters that are not.
inline uint64_t base64DecodeStep(const uint8_t *in, uint8_t *out)
{
    __m256i chars = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in));
    __m256i highNibbles = _mm256_and_si256(_mm256_srli_epi32(chars, 4), _mm256_set1_epi8(0x0f));
    uint64_t invalid = static_cast<uint32_t>(_mm256_movemask_epi8(base64Invalid(chars, highNibbles)));
    if (invalid)
        return invalid;
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), base64Pack(base64Values(chars, highNibbles)));
    return 0;
}

// --- the base64 loops over a vector step -----------------------------------------
//
// A Step encodes kBytes bytes (a multiple of 3) to kBytes / 3 * 4 characters,
// and decodes kChars characters to kChars / 4 * 3 bytes when all are in the
// alphabet (returning 0), else writes nothing and returns the mask of those
// that are not. Both read exactly their input; decoding writes a whole vector.

template <class Step> void encodeGroupsWith(const uint8_t *in, size_t n, uint8_t *out)
{
    if (n < Step::kBytes) {
        ScalarOps::encodeGroups(in, n, out);
        return;
    }
    size_t i = 0;
    for (; n - i >= Step::kBytes; i += Step::kBytes)
        Step::encode(in + i, out + i / 3 * 4);
    // The rest as one step ending at the last byte: it rewrites characters that
    // are already there with the same values (kBytes and n are multiples of 3).
    if (i < n)
        Step::encode(in + n - Step::kBytes, out + (n - Step::kBytes) / 3 * 4);
}

// Decodes one line of exactly `length` alphabet characters (a multiple of 4, at
// least one step) with steps that overlap at the end; false when a step finds an
// outsider (the bytes written so far are right, and the caller decodes again).
template <class Step> bool decodeLine(const uint8_t *in, size_t length, uint8_t *out)
{
    constexpr size_t width = Step::kChars;
    for (size_t at = 0;; at += width) {
        if (at + width > length)
            at = length - width;
        if (Step::decode(in + at, out + at / 4 * 3))
            return false;
        if (at + width == length)
            return true;
    }
}

template <class Step> size_t decodeRunWith(const uint8_t *in, size_t n, uint8_t *out, size_t &written)
{
    constexpr size_t width = Step::kChars;
    size_t i = 0, o = 0;
    size_t run = 0, runOut = 0; // where the current run of alphabet characters starts, in and out
    size_t line = 0;            // length of the last line that ended in CR LF, when whole quartets
    for (;;) {
        // Text broken into lines of one length: expect the next line to match.
        while (line && n - i >= line + 2 && in[i + line] == '\r' && in[i + line + 1] == '\n' &&
               decodeLine<Step>(in + i, line, out + o)) {
            i += line + 2;
            o += line / 4 * 3;
            run = i;
            runOut = o;
        }
        uint64_t invalid = 0;
        while (n - i >= width && !(invalid = Step::decode(in + i, out + o))) {
            i += width;
            o += width / 4 * 3;
        }
        // The whole quartets before the first outsider or the end.
        size_t end = invalid ? i + (static_cast<size_t>(__builtin_ctzll(invalid)) & ~size_t{3}) : n;
        if (invalid && end - run >= width) {
            // One step ending there, over characters of the run decoded before.
            if (end > i)
                Step::decode(in + end - width, out + runOut + (end - width - run) / 4 * 3);
            o += (end - i) / 4 * 3;
            i = end;
        } else {
            size_t used = ScalarOps::decodeQuartets(in + i, end - i, out + o);
            i += used;
            o += used / 4 * 3;
        }
        line = n - i >= 2 && in[i] == '\r' && in[i + 1] == '\n' && i - run >= width ? i - run : 0;
        size_t next = i;
        while (next < n && isBase64Space(in[next]))
            ++next;
        if (next == i)
            break;
        i = run = next;
        runOut = o;
    }
    written = o;
    return i;
}

struct Base64Step {
    static constexpr size_t kBytes = 24;
    static constexpr size_t kChars = 32;
    static void encode(const uint8_t *in, uint8_t *out) { base64EncodeStep(in, out); }
    static uint64_t decode(const uint8_t *in, uint8_t *out) { return base64DecodeStep(in, out); }
};

// --- quoted-printable ----------------------------------------------------------

// Bytes the encoder cannot write as they are: controls but tab, "=", 127 and up.
inline uint32_t quopSpecialMask(__m256i v)
{
    __m256i low = _mm256_cmpgt_epi8(_mm256_set1_epi8(32), v); // below 32, and 128 up (negative)
    low = _mm256_andnot_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8('\t')), low);
    __m256i other =
        _mm256_or_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8('=')), _mm256_cmpeq_epi8(v, _mm256_set1_epi8(127)));
    return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(low, other)));
}

size_t copyLiteral(const uint8_t *in, size_t n, size_t max, uint8_t *out)
{
    size_t i = 0;
    while (i < max && n - i >= 32) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), v);
        if (uint32_t special = quopSpecialMask(v)) {
            size_t stop = i + static_cast<size_t>(__builtin_ctz(special));
            return stop < max ? stop : max;
        }
        i += 32;
    }
    if (i >= max)
        return max;
    return i + ScalarOps::copyLiteral(in + i, n - i, max - i, out + i);
}

size_t countSpecial(const uint8_t *in, size_t n)
{
    size_t count = 0, i = 0;
    for (; n - i >= 32; i += 32)
        count += static_cast<size_t>(
            __builtin_popcount(quopSpecialMask(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + i)))));
    return count + ScalarOps::countSpecial(in + i, n - i);
}

size_t countEscaped(const uint8_t *in, size_t n)
{
    size_t count = 0, i = 0;
    for (; n - i >= 32; i += 32) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + i));
        __m256i lineEnd =
            _mm256_or_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8('\r')), _mm256_cmpeq_epi8(v, _mm256_set1_epi8('\n')));
        uint32_t escaped = quopSpecialMask(v) & ~static_cast<uint32_t>(_mm256_movemask_epi8(lineEnd));
        count += static_cast<size_t>(__builtin_popcount(escaped));
    }
    return count + ScalarOps::countEscaped(in + i, n - i);
}

size_t copyPlain(const uint8_t *in, size_t n, uint8_t *out)
{
    size_t i = 0;
    for (; n - i >= 32; i += 32) {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), v);
        __m256i stop =
            _mm256_or_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8('=')), _mm256_cmpeq_epi8(v, _mm256_set1_epi8('\n')));
        if (uint32_t mask = static_cast<uint32_t>(_mm256_movemask_epi8(stop)))
            return i + static_cast<size_t>(__builtin_ctz(mask));
    }
    return i + ScalarOps::copyPlain(in + i, n - i, out + i);
}

} // namespace Avx2

struct Avx2Ops {
    static void encodeGroups(const uint8_t *in, size_t n, uint8_t *out)
    {
        Avx2::encodeGroupsWith<Avx2::Base64Step>(in, n, out);
    }
    static size_t decodeRun(const uint8_t *in, size_t n, uint8_t *out, size_t &written)
    {
        return Avx2::decodeRunWith<Avx2::Base64Step>(in, n, out, written);
    }
    static size_t copyLiteral(const uint8_t *in, size_t n, size_t max, uint8_t *out)
    {
        return Avx2::copyLiteral(in, n, max, out);
    }
    static constexpr size_t kQuopBlock = 32;
    static uint64_t quopStops(const uint8_t *in)
    {
        return Avx2::quopSpecialMask(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in)));
    }
    static uint64_t crLfStarts(const uint8_t *in)
    {
        __m256i cr =
            _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in)), _mm256_set1_epi8('\r'));
        __m256i lf =
            _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + 1)), _mm256_set1_epi8('\n'));
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_and_si256(cr, lf)));
    }
    static uint64_t spaceBeforeCrLf(const uint8_t *in)
    {
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in));
        __m256i space =
            _mm256_or_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8(' ')), _mm256_cmpeq_epi8(v, _mm256_set1_epi8('\t')));
        return static_cast<uint32_t>(_mm256_movemask_epi8(space)) & crLfStarts(in + 1);
    }
    static void copyBlock(const uint8_t *in, uint8_t *out)
    {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out),
                            _mm256_loadu_si256(reinterpret_cast<const __m256i *>(in)));
    }
    static size_t countSpecial(const uint8_t *in, size_t n) { return Avx2::countSpecial(in, n); }
    static size_t countEscaped(const uint8_t *in, size_t n) { return Avx2::countEscaped(in, n); }
    static size_t copyPlain(const uint8_t *in, size_t n, uint8_t *out) { return Avx2::copyPlain(in, n, out); }
};

} // namespace

} // namespace rfc
