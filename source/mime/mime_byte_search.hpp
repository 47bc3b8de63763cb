// Internal: finding a short byte string in a large buffer at memory speed, for
// the multipart delimiter and the empty line that ends a header block.
//
// Candidates are positions whose first and last bytes match the needle's; they
// are found many positions at a time (64 with AVX2 where the processor has it,
// else 16 with SSE2) and checked in full only then. Delimiters start with CR
// and end in a boundary character, so in text and base64 bodies almost no
// position survives the filter: a body is read once, never once per byte.
#pragma once

#include <pb/pb_types.h>

namespace mime::bytes {

// The lowest index i >= from with hay[i, i + m) equal to needle[0, m), or -1.
// 0 <= from <= n; m >= 1.
PB_INT find(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept;

// The builds find chooses between, once: 16 positions a step (SSE2, or one
// without it), and 64 a step with AVX2 (the rest by the first; call it only
// where the processor has AVX2).
PB_INT findSse2(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept;
PB_INT findAvx2(const PB_BYTE *hay, PB_INT n, PB_INT from, const PB_BYTE *needle, PB_INT m) noexcept;

} // namespace mime::bytes
