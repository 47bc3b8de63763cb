// Internal: base64 over plain memory, with the rules documented in rfc_base.h.
// The buffer functions of rfc_base.cpp size the output and call these.
#pragma once

#include <rfc/rfc_kernels.hpp>

namespace rfc::base64 {

// Exact length of the encoded text of n bytes with lines of lineLength
// characters (0 or -1: one line).
size_t encodedLength(size_t n, int64_t lineLength) noexcept;
// Writes encodedLength(n, lineLength) characters to out.
inline void encode(const uint8_t *in, size_t n, int64_t lineLength, uint8_t *out, const Kernels &kernels) noexcept
{
    kernels.base64Encode(in, n, lineLength, out);
}

// Room decode needs for the text of n characters, slack included.
size_t decodeBound(size_t n) noexcept;
// Writes the decoded bytes and returns their count, or -1 when the text is invalid.
inline ptrdiff_t decode(const uint8_t *in, size_t n, uint8_t *out, const Kernels &kernels) noexcept
{
    return kernels.base64Decode(in, n, out);
}

} // namespace rfc::base64
