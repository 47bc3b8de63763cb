// Internal: the base64 codec over a set of inner loops Ops, which provides
//   encodeGroups(in, n, out)       n (a multiple of 3) bytes to n / 3 * 4 characters
//   decodeRun(in, n, out, written) whole quartets of alphabet characters and the
//                                  CR, LF, space and tab between quartets; returns
//                                  the characters consumed, sets the bytes written
// Included by the two kernel builds only; everything here has internal linkage,
// so each build keeps its own instructions.
#pragma once

#include <rfc/rfc_base64_codec.hpp>

#include <cstring>

namespace rfc::base64 {
namespace {

// The last one or two bytes as a padded quartet.
inline void encodeTail(const uint8_t *in, size_t rest, uint8_t *out)
{
    const auto &alphabet = tables::base64Alphabet;
    uint32_t v = uint32_t{in[0]} << 16 | (rest == 2 ? uint32_t{in[1]} << 8 : 0);
    out[0] = alphabet.at[v >> 18];
    out[1] = alphabet.at[v >> 12 & 63];
    out[2] = rest == 2 ? alphabet.at[v >> 6 & 63] : '=';
    out[3] = '=';
}

// One unbroken line of (n + 2) / 3 * 4 characters.
template <class Ops> void encodeLine(const uint8_t *in, size_t n, uint8_t *out)
{
    size_t whole = n / 3 * 3;
    Ops::encodeGroups(in, whole, out);
    if (whole < n)
        encodeTail(in + whole, n - whole, out + whole / 3 * 4);
}

inline void putLineBreak(uint8_t *out)
{
    out[0] = '\r';
    out[1] = '\n';
}

template <class Ops> void encodeWith(const uint8_t *in, size_t n, int64_t lineLength, uint8_t *out)
{
    size_t chars = (n + 2) / 3 * 4;
    size_t line = static_cast<size_t>(lineLength);
    if (lineLength <= 0 || chars <= line) {
        encodeLine<Ops>(in, n, out);
        return;
    }
    if (line % 4 == 0) {
        // Lines hold whole groups: encode each line in place.
        size_t lineBytes = line / 4 * 3;
        for (; n > lineBytes; in += lineBytes, n -= lineBytes, out += line + 2) {
            Ops::encodeGroups(in, lineBytes, out);
            putLineBreak(out + line);
        }
        encodeLine<Ops>(in, n, out);
        return;
    }
    // Lines split groups: encode into the end of the output, then move each line
    // forward to its place. A line never moves past text not yet moved.
    size_t total = encodedLength(n, lineLength);
    uint8_t *text = out + (total - chars);
    encodeLine<Ops>(in, n, text);
    for (size_t at = 0; at < chars; at += line, out += line + 2) {
        size_t length = chars - at < line ? chars - at : line;
        std::memmove(out, text + at, length);
        if (at + length < chars)
            putLineBreak(out + length);
    }
}

// Decodes in[0, n). Strict without fault (-1 for invalid text); with fault,
// tolerant: *fault becomes the offset of the first character the strict
// reading refuses (n for a lone last sextet), and decoding goes on over what is
// base64: characters outside the alphabet and misplaced "=" are skipped,
// padding after two or three sextets ends the text, a lone sextet is dropped.
template <class Ops> ptrdiff_t decodeTolerating(const uint8_t *in, size_t n, uint8_t *out, size_t *fault)
{
    const auto &values = tables::base64Values;
    size_t i = 0, o = 0;
    uint32_t bits = 0;
    int pending = 0; // sextets in bits
    auto refused = [fault](size_t at) {
        if (fault && *fault == SIZE_MAX)
            *fault = at;
        return !fault;
    };
    while (i < n) {
        if (pending == 0) {
            size_t written = 0;
            i += Ops::decodeRun(in + i, n - i, out + o, written);
            o += written;
            if (i == n)
                break;
        }
        // A quartet split by white space, padding, or a character outside the alphabet.
        uint8_t value = values.at[in[i++]];
        if (value < 64) {
            bits = bits << 6 | value;
            if (++pending == 4) {
                out[o++] = static_cast<uint8_t>(bits >> 16);
                out[o++] = static_cast<uint8_t>(bits >> 8);
                out[o++] = static_cast<uint8_t>(bits);
                pending = 0;
            }
        } else if (value == tables::kBase64Pad) {
            // Padding ends the text: "=" after three sextets, "==" after two, then
            // nothing but skipped characters.
            if (pending < 2) {
                if (refused(i - 1))
                    return -1;
                continue; // a stray "=" in tolerant reading
            }
            int pads = 1;
            size_t padStart = i - 1;
            for (; i < n; ++i) {
                uint8_t next = values.at[in[i]];
                if (next == tables::kBase64Pad)
                    ++pads;
                else if (next != tables::kBase64Space && refused(i))
                    return -1;
            }
            if (pads != 4 - pending && refused(padStart))
                return -1;
            break;
        } else if (value != tables::kBase64Space && refused(i - 1)) {
            return -1;
        }
    }
    if (pending == 1) {
        if (refused(n))
            return -1;
        pending = 0;
    }
    if (pending >= 2)
        out[o++] = static_cast<uint8_t>(bits >> (pending == 2 ? 4 : 10));
    if (pending == 3)
        out[o++] = static_cast<uint8_t>(bits >> 2);
    return static_cast<ptrdiff_t>(o);
}

template <class Ops> ptrdiff_t decodeWith(const uint8_t *in, size_t n, uint8_t *out)
{
    return decodeTolerating<Ops>(in, n, out, nullptr);
}

} // namespace
} // namespace rfc::base64
