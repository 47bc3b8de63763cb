// Internal: quoted-printable over plain memory, with the rules documented in
// rfc_quop.h. The buffer functions of rfc_quop.cpp size the output and call these.
#pragma once

#include <rfc/rfc_kernels.hpp>

#include <cstddef>
#include <cstdint>

namespace rfc::quop {

// Room encode needs for n bytes with lines of at most maxLineLength (4 to 76)
// characters, slack included. Reads the input once.
size_t encodeBound(const uint8_t *in, size_t n, int64_t maxLineLength, const Kernels &kernels) noexcept;
// Writes the text and returns its length.
size_t encode(const uint8_t *in, size_t n, int64_t maxLineLength, uint8_t *out, const Kernels &kernels) noexcept;

// Room decode needs for the text of n bytes, slack included.
size_t decodeBound(size_t n) noexcept;
// Writes the decoded bytes and returns their count, or -1 when the text is invalid.
ptrdiff_t decode(const uint8_t *in, size_t n, uint8_t *out, const Kernels &kernels) noexcept;

} // namespace rfc::quop
