#include <rfc/rfc_base.h>
#include <rfc/rfc_base64_codec.hpp>
#include <rfc/rfc_coded_buffer.hpp>

PB_BUFFER *rfcBaseEncodeWithOptions(PB_BUFFER *buffer, PB_INT variant, RFC_BASE_OPTIONS *options) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( variant == RFC_BASE_VARIANT_BASE64 );
    PB_ASSERT( options );
    PB_INT lineLength = rfcBaseOptionsOutputLineLength(options);
    size_t length = rfc::base64::encodedLength(static_cast<size_t>(pbBufferLength(buffer)), lineLength);
    return rfc::codeBuffer(buffer, length, [&](const uint8_t *in, size_t n, uint8_t *out) {
        rfc::base64::encode(in, n, lineLength, out, rfc::bestKernels());
        return static_cast<ptrdiff_t>(length);
    });
}

PB_BUFFER *rfcBaseDecodeTolerant(PB_BUFFER *buffer, PB_INT variant, PB_INT *fault) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( variant == RFC_BASE_VARIANT_BASE64 );
    size_t bound = rfc::base64::decodeBound(static_cast<size_t>(pbBufferLength(buffer)));
    return rfc::decodeTolerantly(
        buffer, bound,
        [](const uint8_t *in, size_t n, uint8_t *out) { return rfc::base64::decode(in, n, out, rfc::bestKernels()); },
        rfc::base64DecodeTolerant, fault);
}

PB_BUFFER *rfcBaseTryDecodeWithOptions(PB_BUFFER *buffer, PB_INT variant, RFC_BASE_OPTIONS *options) noexcept
{
    PB_ASSERT( buffer );
    PB_ASSERT( variant == RFC_BASE_VARIANT_BASE64 );
    PB_ASSERT( options );
    size_t bound = rfc::base64::decodeBound(static_cast<size_t>(pbBufferLength(buffer)));
    return rfc::codeBuffer(buffer, bound, [](const uint8_t *in, size_t n, uint8_t *out) {
        return rfc::base64::decode(in, n, out, rfc::bestKernels());
    });
}
