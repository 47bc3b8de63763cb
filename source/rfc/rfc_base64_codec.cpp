#include <rfc/rfc_base64_codec.hpp>

#include <cstring>

namespace rfc::base64 {
namespace {

using tables::base64Alphabet;

// The last one or two bytes as a padded quartet.
void encodeTail(const uint8_t *in, size_t rest, uint8_t *out)
{
    uint32_t v = uint32_t{in[0]} << 16 | (rest == 2 ? uint32_t{in[1]} << 8 : 0);
    out[0] = base64Alphabet[v >> 18];
    out[1] = base64Alphabet[v >> 12 & 63];
    out[2] = rest == 2 ? base64Alphabet[v >> 6 & 63] : '=';
    out[3] = '=';
}

// One unbroken line of (n + 2) / 3 * 4 characters.
void encodeLine(const uint8_t *in, size_t n, uint8_t *out, const Kernels &kernels)
{
    size_t whole = n / 3 * 3;
    kernels.base64EncodeGroups(in, whole, out);
    if (whole < n)
        encodeTail(in + whole, n - whole, out + whole / 3 * 4);
}

void putLineBreak(uint8_t *out)
{
    out[0] = '\r';
    out[1] = '\n';
}

} // namespace

size_t encodedLength(size_t n, int64_t lineLength) noexcept
{
    size_t chars = (n + 2) / 3 * 4;
    if (lineLength <= 0 || chars == 0)
        return chars;
    return chars + (chars - 1) / static_cast<size_t>(lineLength) * 2;
}

void encode(const uint8_t *in, size_t n, int64_t lineLength, uint8_t *out, const Kernels &kernels) noexcept
{
    size_t chars = (n + 2) / 3 * 4;
    size_t line = static_cast<size_t>(lineLength);
    if (lineLength <= 0 || chars <= line) {
        encodeLine(in, n, out, kernels);
        return;
    }
    if (line % 4 == 0) {
        // Lines hold whole groups: encode each line in place.
        size_t lineBytes = line / 4 * 3;
        for (; n > lineBytes; in += lineBytes, n -= lineBytes, out += line + 2) {
            kernels.base64EncodeGroups(in, lineBytes, out);
            putLineBreak(out + line);
        }
        encodeLine(in, n, out, kernels);
        return;
    }
    // Lines split groups: encode into the end of the output, then move each line
    // forward to its place. A line never moves past text not yet moved.
    size_t total = encodedLength(n, lineLength);
    uint8_t *text = out + (total - chars);
    encodeLine(in, n, text, kernels);
    for (size_t at = 0; at < chars; at += line, out += line + 2) {
        size_t length = chars - at < line ? chars - at : line;
        std::memmove(out, text + at, length);
        if (at + length < chars)
            putLineBreak(out + length);
    }
}

size_t decodeBound(size_t n) noexcept
{
    return n / 4 * 3 + 3 + kWriteSlack;
}

ptrdiff_t decode(const uint8_t *in, size_t n, uint8_t *out, const Kernels &kernels) noexcept
{
    const auto &values = tables::base64Values;
    size_t i = 0, o = 0;
    uint32_t bits = 0;
    int pending = 0; // sextets in bits
    while (i < n) {
        if (pending == 0) {
            size_t used = kernels.base64DecodeQuartets(in + i, n - i, out + o);
            i += used;
            o += used / 4 * 3;
            if (i == n)
                break;
        }
        uint8_t value = values[in[i++]];
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
            int pads = 1;
            for (; i < n; ++i) {
                uint8_t next = values[in[i]];
                if (next == tables::kBase64Pad)
                    ++pads;
                else if (next != tables::kBase64Space)
                    return -1;
            }
            if (pending < 2 || pads != 4 - pending)
                return -1;
            break;
        } else if (value != tables::kBase64Space) {
            return -1;
        }
    }
    if (pending == 1)
        return -1;
    if (pending >= 2)
        out[o++] = static_cast<uint8_t>(bits >> (pending == 2 ? 4 : 10));
    if (pending == 3)
        out[o++] = static_cast<uint8_t>(bits >> 2);
    return static_cast<ptrdiff_t>(o);
}

} // namespace rfc::base64
