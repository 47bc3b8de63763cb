// Internal: quoted-printable over plain memory, with the rules documented in
// rfc_quop.h. The buffer functions of rfc_quop.cpp size the output and call these.
#pragma once

#include <rfc/rfc_kernels.hpp>

#include <cstdint>

namespace rfc::quop {

// Room encode needs for n bytes with lines of at most maxLineLength (4 to 76)
// characters, slack included. Reads the input once.
inline size_t encodeBound(const uint8_t *in, size_t n, int64_t maxLineLength, const Kernels &kernels) noexcept
{
    return kernels.quopEncodeBound(in, n, maxLineLength);
}
// The bytes among n that encode always writes as "=XX" (see rfcQuopEscapeCount).
inline size_t escapeCount(const uint8_t *in, size_t n, const Kernels &kernels) noexcept
{
    return kernels.quopEscapeCount(in, n);
}
// Writes the text into room of encodeBound and returns its length.
inline size_t encode(const uint8_t *in, size_t n, int64_t maxLineLength, uint8_t *out, const Kernels &kernels) noexcept
{
    QuopCursor cursor;
    kernels.quopEncode(in, n, maxLineLength, out, SIZE_MAX, cursor);
    return cursor.out;
}
// Writes the text from where cursor stands into out[cursor.out, room): true
// when it is complete, false when it stopped for want of room (call again
// with more; room of encodeBound always suffices).
inline bool encodeInto(const uint8_t *in, size_t n, int64_t maxLineLength, uint8_t *out, size_t room,
                       QuopCursor &cursor, const Kernels &kernels) noexcept
{
    return kernels.quopEncode(in, n, maxLineLength, out, room, cursor);
}

// Room decode needs for the text of n bytes, slack included.
inline size_t decodeBound(size_t n) noexcept
{
    return n + kWriteSlack;
}
// Writes the decoded bytes and returns their count, or -1 when the text is invalid.
inline ptrdiff_t decode(const uint8_t *in, size_t n, uint8_t *out, const Kernels &kernels) noexcept
{
    return kernels.quopDecode(in, n, out);
}

} // namespace rfc::quop
