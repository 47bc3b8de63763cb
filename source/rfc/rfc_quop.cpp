#include <rfc/rfc_coded_buffer.hpp>
#include <rfc/rfc_quop.h>
#include <rfc/rfc_quop_codec.hpp>

PB_BUFFER *rfcQuopEncodeWithOptions(PB_BUFFER *buffer, RFC_QUOP_OPTIONS *options) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( options );
    if (pbBufferBitLength(buffer) % 8 != 0)
        return nullptr;
    PB_INT maxLineLength = rfcQuopOptionsMaxLineLength(options);
    const rfc::Kernels &kernels = rfc::bestKernels();
    size_t bound = rfc::quop::encodeBound(pbBufferBacking(buffer), static_cast<size_t>(pbBufferLength(buffer)),
                                          maxLineLength, kernels);
    return rfc::codeBuffer(buffer, bound, [&](const uint8_t *in, size_t n, uint8_t *out) {
        return static_cast<ptrdiff_t>(rfc::quop::encode(in, n, maxLineLength, out, kernels));
    });
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
