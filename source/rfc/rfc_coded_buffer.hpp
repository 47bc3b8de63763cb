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

} // namespace rfc
