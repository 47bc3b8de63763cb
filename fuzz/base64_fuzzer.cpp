// Any bytes as base64 text: decoding never aborts or reads outside the input,
// every kernel set the processor runs (AVX2 and AVX-512 alike) gives the
// scalar one's answer, and decoded bytes encode (at a line length taken from
// the input, to the same text with every kernel set) to text that decodes back
// to them.
#include "codec_support.hpp"
#include "fuzz_support.hpp"

#include <pb/pb_ref.hpp>
#include <rfc/rfc.h>
#include <rfc/rfc_base64_codec.hpp>

#include <cstring>
#include <vector>

namespace {

std::vector<uint8_t> decoded(const uint8_t *d, size_t n, const rfc::Kernels &k, bool &ok)
{
    return fuzz::decoded(
        d, n, rfc::base64::decodeBound(n),
        [&](const uint8_t *in, size_t size, uint8_t *out) { return rfc::base64::decode(in, size, out, k); }, ok);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        bool ok = false;
        std::vector<uint8_t> bytes = decoded(d, n, rfc::scalarKernels(), ok);
        const int64_t lineLength = n ? d[0] % 90 - 1 : 76;
        std::vector<uint8_t> encoded(rfc::base64::encodedLength(bytes.size(), lineLength));
        rfc::base64::encode(bytes.data(), bytes.size(), lineLength, encoded.data(), rfc::scalarKernels());
        for (const rfc::Kernels *k : fuzz::vectorKernels()) {
            bool vectorOk = false;
            PB_ASSERT( decoded(d, n, *k, vectorOk) == bytes && vectorOk == ok );
            std::vector<uint8_t> vectorEncoded(encoded.size());
            rfc::base64::encode(bytes.data(), bytes.size(), lineLength, vectorEncoded.data(), *k);
            PB_ASSERT( vectorEncoded == encoded );
        }

        pb::Ref<PB_BUFFER> text = pb::adopt(pbBufferCreateFromBytesCopy(d, static_cast<PB_INT>(n)));
        pb::Ref<RFC_BASE_OPTIONS> options = pb::adopt(rfcBaseOptionsCreate());
        pb::Ref<PB_BUFFER> result =
            pb::adopt(rfcBaseTryDecodeWithOptions(text.get(), RFC_BASE_VARIANT_BASE64, options.get()));
        PB_ASSERT( ok == (result.get() != nullptr) );
        if (!ok)
            return;
        PB_ASSERT( pbBufferLength(result.get()) == static_cast<PB_INT>(bytes.size()) );
        PB_ASSERT( bytes.empty() || std::memcmp(pbBufferBacking(result.get()), bytes.data(), bytes.size()) == 0 );

        rfcBaseOptionsSetOutputLineLength(options.addr(), lineLength);
        pb::Ref<PB_BUFFER> again =
            pb::adopt(rfcBaseEncodeWithOptions(result.get(), RFC_BASE_VARIANT_BASE64, options.get()));
        pb::Ref<PB_BUFFER> back =
            pb::adopt(rfcBaseTryDecodeWithOptions(again.get(), RFC_BASE_VARIANT_BASE64, options.get()));
        PB_ASSERT( back && pbBufferCompare(back.get(), result.get()) == 0 );
    });
}
