// Internal: the inner loops of the codecs in plain C++, table-driven. The scalar
// build runs them alone; the AVX2 build runs them on the tails that are too short
// for a vector step. Internal linkage: each build compiles its own copy.
#pragma once

#include <rfc/rfc_kernels.hpp>

namespace rfc {
namespace {

inline bool isBase64Space(uint8_t b)
{
    return tables::base64Values.at[b] == tables::kBase64Space;
}

struct ScalarOps {
    static void encodeGroups(const uint8_t *in, size_t n, uint8_t *out)
    {
        const auto &alphabet = tables::base64Alphabet;
        for (size_t i = 0; i < n; i += 3, out += 4) {
            uint32_t v = uint32_t{in[i]} << 16 | uint32_t{in[i + 1]} << 8 | in[i + 2];
            out[0] = alphabet.at[v >> 18];
            out[1] = alphabet.at[v >> 12 & 63];
            out[2] = alphabet.at[v >> 6 & 63];
            out[3] = alphabet.at[v & 63];
        }
    }

    // Whole quartets of alphabet characters only; returns the characters consumed.
    static size_t decodeQuartets(const uint8_t *in, size_t n, uint8_t *out)
    {
        const auto &values = tables::base64Values;
        size_t i = 0;
        for (; n - i >= 4; i += 4, out += 3) {
            uint32_t a = values.at[in[i]], b = values.at[in[i + 1]], c = values.at[in[i + 2]], d = values.at[in[i + 3]];
            if ((a | b | c | d) >= 64) // a mark, not a value
                break;
            uint32_t v = a << 18 | b << 12 | c << 6 | d;
            out[0] = static_cast<uint8_t>(v >> 16);
            out[1] = static_cast<uint8_t>(v >> 8);
            out[2] = static_cast<uint8_t>(v);
        }
        return i;
    }

    static size_t decodeRun(const uint8_t *in, size_t n, uint8_t *out, size_t &written)
    {
        size_t i = 0, o = 0;
        for (;;) {
            size_t used = decodeQuartets(in + i, n - i, out + o);
            i += used;
            o += used / 4 * 3;
            size_t next = i;
            while (next < n && isBase64Space(in[next]))
                ++next;
            if (next == i)
                break;
            i = next;
        }
        written = o;
        return i;
    }

    static size_t copyLiteral(const uint8_t *in, size_t n, size_t max, uint8_t *out)
    {
        size_t i = 0;
        max = max < n ? max : n;
        while (i < max && tables::quopLiteral.at[in[i]]) {
            out[i] = in[i];
            ++i;
        }
        return i;
    }

    static size_t countSpecial(const uint8_t *in, size_t n)
    {
        size_t count = 0;
        for (size_t i = 0; i < n; ++i)
            count += !tables::quopLiteral.at[in[i]];
        return count;
    }

    static size_t countEscaped(const uint8_t *in, size_t n)
    {
        size_t count = 0;
        for (size_t i = 0; i < n; ++i)
            count += !tables::quopLiteral.at[in[i]] && in[i] != '\r' && in[i] != '\n';
        return count;
    }

    static size_t copyPlain(const uint8_t *in, size_t n, uint8_t *out)
    {
        size_t i = 0;
        while (i < n && in[i] != '=' && in[i] != '\n') {
            out[i] = in[i];
            ++i;
        }
        return i;
    }
};

} // namespace
} // namespace rfc
