#include <rfc/rfc_coded_buffer.hpp>
#include <rfc/rfc_quop.h>
#include <rfc/rfc_quop_codec.hpp>

#include <cstdint>

PB_BUFFER *rfcQuopEncodeWithOptions(PB_BUFFER *buffer, RFC_QUOP_OPTIONS *options) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( options );
    if (pbBufferBitLength(buffer) % 8 != 0)
        return nullptr;
    PB_INT maxLineLength = rfcQuopOptionsMaxLineLength(options);
    const rfc::Kernels &kernels = rfc::bestKernels();
    const uint8_t *in = pbBufferBacking(buffer);
    size_t n = static_cast<size_t>(pbBufferLength(buffer));
    // Room for most text at once; text with more escapes is counted for its
    // bound and continued (which saves most text a pass over its input).
    pb::Ref<PB_BUFFER> output = pb::adopt(pbBufferCreate());
    size_t room = rfc::quopGuessedRoom(n, maxLineLength);
    rfc::QuopCursor cursor;
    uint8_t *out = pbBufferAppendSpace(output.addr(), static_cast<PB_INT>(room));
    if (!rfc::quop::encodeInto(in, n, maxLineLength, out, room, cursor, kernels)) {
        size_t bound = rfc::quop::encodeBound(in, n, maxLineLength, kernels);
        if (bound > room) {
            out = pbBufferAppendSpace(output.addr(), static_cast<PB_INT>(bound - room)) - room;
            room = bound;
        }
        rfc::quop::encodeInto(in, n, maxLineLength, out, SIZE_MAX, cursor, kernels);
    }
    pbBufferDelTrailing(output.addr(), static_cast<PB_INT>(room - cursor.out));
    return output.release();
}

PB_INT rfcQuopEscapeCount(PB_BUFFER *buffer, PB_INT offset, PB_INT length) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( offset >= 0 && length >= 0 && length <= pbBufferLength( buffer ) - offset );
    const uint8_t *in = pbBufferBacking(buffer) + offset;
    return static_cast<PB_INT>(rfc::quop::escapeCount(in, static_cast<size_t>(length), rfc::bestKernels()));
}

PB_BUFFER *rfcQuopDecodeTolerant(PB_BUFFER *buffer, PB_INT *fault) noexcept
{
    PB_ASSERT( buffer );
    size_t bound = rfc::quop::decodeBound(static_cast<size_t>(pbBufferLength(buffer)));
    return rfc::decodeTolerantly(
        buffer, bound,
        [](const uint8_t *in, size_t n, uint8_t *out) { return rfc::quop::decode(in, n, out, rfc::bestKernels()); },
        rfc::quopDecodeTolerant, fault);
}

PB_BUFFER *rfcQuopTryDecodeWithOptions(PB_BUFFER *buffer, RFC_QUOP_OPTIONS *options) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( options );
    size_t bound = rfc::quop::decodeBound(static_cast<size_t>(pbBufferLength(buffer)));
    return rfc::codeBuffer(buffer, bound, [](const uint8_t *in, size_t n, uint8_t *out) {
        return rfc::quop::decode(in, n, out, rfc::bestKernels());
    });
}
