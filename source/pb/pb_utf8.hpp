// Internal: UTF-8 reading and writing, shared by strings and character sets.
//
// Reading follows the Unicode recommendation for ill-formed input ("maximal
// subparts"): each maximal prefix of a well-formed sequence that breaks off, and
// each byte that can start none, becomes one U+FFFD.
#pragma once

#include <pb/pb_types.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace pb::utf8 {

inline constexpr PB_CHAR kReplacement = 0xFFFD;

inline bool isScalar(PB_CHAR c)
{
    return c < 0xD800 || (c > 0xDFFF && c <= 0x10FFFF);
}

// Reads the sequence that starts with the byte of 128 or more at in[i]: its
// code point into c and its length, or minus the length of its maximal subpart
// (at least 1) when it is ill-formed.
inline int readSequence(const uint8_t *in, size_t n, size_t i, PB_CHAR &c)
{
    uint8_t b = in[i];
    // Lead byte: number of continuation bytes and the range of the first one.
    int need;
    uint8_t lo = 0x80, hi = 0xBF;
    if (b >= 0xC2 && b <= 0xDF) {
        need = 1;
        c = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        need = 2;
        c = b & 0x0F;
        if (b == 0xE0)
            lo = 0xA0;
        else if (b == 0xED)
            hi = 0x9F;
    } else if (b >= 0xF0 && b <= 0xF4) {
        need = 3;
        c = b & 0x07;
        if (b == 0xF0)
            lo = 0x90;
        else if (b == 0xF4)
            hi = 0x8F;
    } else {
        return -1;
    }
    size_t j = i + 1;
    for (int k = 0; k < need; ++k, ++j) {
        if (j >= n || in[j] < lo || in[j] > hi)
            return -static_cast<int>(j - i); // resume at the byte that broke the sequence
        c = (c << 6) | (in[j] & 0x3F);
        lo = 0x80;
        hi = 0xBF;
    }
    return need + 1;
}

// The length of the longest ASCII run at in[i] rounded down to eight bytes.
inline size_t asciiWords(const uint8_t *in, size_t n, size_t i)
{
    size_t from = i;
    while (i + 8 <= n) {
        uint64_t word;
        std::memcpy(&word, in + i, 8);
        if (word & 0x8080808080808080ull)
            break;
        i += 8;
    }
    return i - from;
}

// Decodes n bytes into out (room for n code points). Returns the number of code
// points written, or -1 when strict and the input is ill-formed.
inline PB_INT decode(const uint8_t *in, size_t n, PB_CHAR *out, bool strict)
{
    size_t i = 0;
    PB_CHAR *o = out;
    while (i < n) {
        // ASCII runs, eight bytes at a time.
        while (i + 8 <= n) {
            uint64_t word;
            std::memcpy(&word, in + i, 8);
            if (word & 0x8080808080808080ull)
                break;
            for (int k = 0; k < 8; ++k)
                *o++ = in[i + k];
            i += 8;
        }
        if (i >= n)
            break;
        if (in[i] < 0x80) {
            *o++ = in[i++];
            continue;
        }
        PB_CHAR c = 0;
        int length = readSequence(in, n, i, c);
        if (length < 0 && strict)
            return -1;
        *o++ = length < 0 ? kReplacement : c;
        i += static_cast<size_t>(length < 0 ? -length : length);
    }
    return o - out;
}

// The offset of the first byte of in[0, n) that starts no well-formed
// sequence, or n when all of it is well-formed.
inline size_t wellFormedLength(const uint8_t *in, size_t n)
{
    size_t i = 0;
    while (i < n) {
        i += asciiWords(in, n, i);
        if (i >= n)
            break;
        if (in[i] < 0x80) {
            ++i;
            continue;
        }
        PB_CHAR c = 0;
        int length = readSequence(in, n, i, c);
        if (length < 0)
            return i;
        i += static_cast<size_t>(length);
    }
    return n;
}

// Bytes that encode(c) writes; a value that is no Unicode scalar counts as U+FFFD.
inline int encodedLength(PB_CHAR c)
{
    if (c < 0x80)
        return 1;
    if (c < 0x800)
        return 2;
    if (!isScalar(c) || c < 0x10000)
        return 3;
    return 4;
}

// Writes c as UTF-8 (a non-scalar value as U+FFFD); returns the bytes written.
inline int encode(PB_CHAR c, uint8_t *out)
{
    if (c < 0x80) {
        out[0] = static_cast<uint8_t>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<uint8_t>(0xC0 | (c >> 6));
        out[1] = static_cast<uint8_t>(0x80 | (c & 0x3F));
        return 2;
    }
    if (!isScalar(c))
        c = kReplacement;
    if (c < 0x10000) {
        out[0] = static_cast<uint8_t>(0xE0 | (c >> 12));
        out[1] = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
        out[2] = static_cast<uint8_t>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<uint8_t>(0xF0 | (c >> 18));
    out[1] = static_cast<uint8_t>(0x80 | ((c >> 12) & 0x3F));
    out[2] = static_cast<uint8_t>(0x80 | ((c >> 6) & 0x3F));
    out[3] = static_cast<uint8_t>(0x80 | (c & 0x3F));
    return 4;
}

} // namespace pb::utf8
