#include <rfc/rfc_kernels.hpp>

#include <cstring>

namespace rfc {
namespace tables {

namespace {

constexpr const char *kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<uint8_t, 64> makeBase64Alphabet()
{
    std::array<uint8_t, 64> t{};
    for (int i = 0; i < 64; ++i)
        t[i] = static_cast<uint8_t>(kAlphabet[i]);
    return t;
}

constexpr std::array<uint8_t, 256> makeBase64Values()
{
    std::array<uint8_t, 256> t{};
    t.fill(kBase64Invalid);
    for (int i = 0; i < 64; ++i)
        t[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    for (uint8_t c : {'\r', '\n', ' ', '\t'})
        t[c] = kBase64Space;
    t['='] = kBase64Pad;
    return t;
}

constexpr std::array<bool, 256> makeQuopLiteral()
{
    std::array<bool, 256> t{};
    for (int c = 33; c <= 126; ++c)
        t[c] = c != '=';
    t[' '] = t['\t'] = true;
    return t;
}

constexpr std::array<int8_t, 256> makeHexValues()
{
    std::array<int8_t, 256> t{};
    t.fill(-1);
    for (int i = 0; i < 10; ++i)
        t['0' + i] = static_cast<int8_t>(i);
    for (int i = 0; i < 6; ++i)
        t['A' + i] = t['a' + i] = static_cast<int8_t>(10 + i);
    return t;
}

} // namespace

constinit const std::array<uint8_t, 64> base64Alphabet = makeBase64Alphabet();
constinit const std::array<uint8_t, 256> base64Values = makeBase64Values();
constinit const std::array<bool, 256> quopLiteral = makeQuopLiteral();
constinit const std::array<uint8_t, 16> hexUpper = {'0', '1', '2', '3', '4', '5', '6', '7',
                                                    '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
constinit const std::array<int8_t, 256> hexValues = makeHexValues();

} // namespace tables

namespace {

using tables::base64Alphabet;
using tables::base64Values;

void base64EncodeGroups(const uint8_t *in, size_t n, uint8_t *out)
{
    for (size_t i = 0; i < n; i += 3, out += 4) {
        uint32_t v = uint32_t{in[i]} << 16 | uint32_t{in[i + 1]} << 8 | in[i + 2];
        out[0] = base64Alphabet[v >> 18];
        out[1] = base64Alphabet[v >> 12 & 63];
        out[2] = base64Alphabet[v >> 6 & 63];
        out[3] = base64Alphabet[v & 63];
    }
}

size_t base64DecodeQuartets(const uint8_t *in, size_t n, uint8_t *out)
{
    size_t i = 0;
    for (; n - i >= 4; i += 4, out += 3) {
        uint32_t a = base64Values[in[i]], b = base64Values[in[i + 1]];
        uint32_t c = base64Values[in[i + 2]], d = base64Values[in[i + 3]];
        if ((a | b | c | d) >= 64) // a mark, not a value
            break;
        uint32_t v = a << 18 | b << 12 | c << 6 | d;
        out[0] = static_cast<uint8_t>(v >> 16);
        out[1] = static_cast<uint8_t>(v >> 8);
        out[2] = static_cast<uint8_t>(v);
    }
    return i;
}

size_t quopCopyLiteral(const uint8_t *in, size_t n, size_t max, uint8_t *out)
{
    size_t i = 0;
    max = max < n ? max : n;
    while (i < max && tables::quopLiteral[in[i]]) {
        out[i] = in[i];
        ++i;
    }
    return i;
}

size_t quopCountSpecial(const uint8_t *in, size_t n)
{
    size_t count = 0;
    for (size_t i = 0; i < n; ++i)
        count += !tables::quopLiteral[in[i]];
    return count;
}

size_t quopCopyPlain(const uint8_t *in, size_t n, uint8_t *out)
{
    size_t i = 0;
    while (i < n && in[i] != '=' && in[i] != '\n') {
        out[i] = in[i];
        ++i;
    }
    return i;
}

constexpr Kernels scalar{"scalar", base64EncodeGroups, base64DecodeQuartets, quopCopyLiteral, quopCountSpecial,
                         quopCopyPlain};

} // namespace

const Kernels &scalarKernels() noexcept
{
    return scalar;
}

const Kernels &bestKernels() noexcept
{
    static const Kernels &best = avx2Kernels() ? *avx2Kernels() : scalar;
    return best;
}

} // namespace rfc
