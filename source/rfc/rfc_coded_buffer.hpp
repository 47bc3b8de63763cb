// Internal: runs a codec over a buffer into a new buffer. The codec is given the
// input bytes and room for at most `bound` output bytes and returns how many it
// wrote, or -1; the unused room is cut off (the allocation keeps its size).
#pragma once

#include <pb/pb_buffer.h>
#include <pb/pb_ref.hpp>

#include <cstddef>
#include <cstdint>

namespace rfc {

template <class Codec> PB_BUFFER *codeBuffer(PB_BUFFER *input, size_t bound, Codec codec) noexcept
{
    pb::Ref<PB_BUFFER> output = pb::adopt(pbBufferCreate());
    uint8_t *out = pbBufferAppendSpace(output.addr(), static_cast<PB_INT>(bound));
    ptrdiff_t written = codec(pbBufferBacking(input), static_cast<size_t>(pbBufferLength(input)), out);
    if (written < 0)
        return nullptr;
    pbBufferDelTrailing(output.addr(), static_cast<PB_INT>(bound - static_cast<size_t>(written)));
    return output.release();
}

// Runs a strict codec (fast kernels) and, when it refuses the input, its
// tolerant twin, which always decodes. *fault (when fault is not null) is -1
// for input the strict codec takes, else the offset of the first fault.
template <class Strict, class Tolerant>
PB_BUFFER *decodeTolerantly(PB_BUFFER *input, size_t bound, Strict strict, Tolerant tolerant, PB_INT *fault) noexcept
{
    if (fault)
        *fault = -1;
    if (PB_BUFFER *decoded = codeBuffer(input, bound, strict))
        return decoded;
    size_t at = SIZE_MAX;
    PB_BUFFER *decoded =
        codeBuffer(input, bound, [&](const uint8_t *in, size_t n, uint8_t *out) { return tolerant(in, n, out, &at); });
    if (fault)
        *fault = static_cast<PB_INT>(at);
    return decoded;
}

} // namespace rfc
