// Any bytes as quoted-printable text and as raw bytes: decoding never aborts or
// reads outside the input, every kernel set the processor runs (AVX2 and
// AVX-512 alike) gives the scalar one's answer, decoded
// bytes encode to text that decodes back to them, and so do the raw bytes, at a
// line length taken from the input. Encoding also runs in steps of little room
// (each in memory of exactly that room), resuming where it stopped, to the
// same text.
#include "codec_support.hpp"
#include "fuzz_support.hpp"

#include <pb/pb_ref.hpp>
#include <rfc/rfc.h>
#include <rfc/rfc_quop_codec.hpp>

#include <algorithm>
#include <vector>

namespace {

std::vector<uint8_t> decoded(const uint8_t *d, size_t n, const rfc::Kernels &k, bool &ok)
{
    return fuzz::decoded(
        d, n, rfc::quop::decodeBound(n),
        [&](const uint8_t *in, size_t size, uint8_t *out) { return rfc::quop::decode(in, size, out, k); }, ok);
}

std::vector<uint8_t> encoded(const uint8_t *d, size_t n, int64_t limit, const rfc::Kernels &k)
{
    std::vector<uint8_t> out(rfc::quop::encodeBound(d, n, limit, k));
    out.resize(rfc::quop::encode(d, n, limit, out.data(), k));
    return out;
}

// Encodes into room that grows by step each time the encoder stops for want of it.
std::vector<uint8_t> encodedInSteps(const uint8_t *d, size_t n, int64_t limit, const rfc::Kernels &k, size_t step)
{
    rfc::QuopCursor cursor;
    std::vector<uint8_t> out;
    for (size_t room = rfc::kQuopStepRoom;; room += step) {
        std::vector<uint8_t> more(room);
        std::copy(out.begin(), out.begin() + static_cast<ptrdiff_t>(cursor.out), more.begin());
        out.swap(more);
        if (rfc::quop::encodeInto(d, n, limit, out.data(), room, cursor, k))
            break;
        PB_ASSERT( room - cursor.out < rfc::kQuopStepRoom && cursor.in < n );
    }
    out.resize(cursor.out);
    return out;
}

// Encodes with every kernel set, at once and in steps, and checks the text
// decodes back to the bytes.
void roundTrip(const std::vector<uint8_t> &bytes, int64_t limit)
{
    std::vector<uint8_t> text = encoded(bytes.data(), bytes.size(), limit, rfc::scalarKernels());
    bool ok = false;
    PB_ASSERT( decoded(text.data(), text.size(), rfc::scalarKernels(), ok) == bytes && ok );
    const size_t step = 1 + bytes.size() % 97;
    PB_ASSERT( encodedInSteps(bytes.data(), bytes.size(), limit, rfc::scalarKernels(), step) == text );
    for (const rfc::Kernels *k : fuzz::vectorKernels()) {
        PB_ASSERT( encoded(bytes.data(), bytes.size(), limit, *k) == text );
        PB_ASSERT( encodedInSteps(bytes.data(), bytes.size(), limit, *k, step) == text );
        PB_ASSERT( decoded(text.data(), text.size(), *k, ok) == bytes && ok );
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        int64_t limit = n ? 4 + d[0] % 73 : 76;
        roundTrip(std::vector<uint8_t>(d, d + n), limit);

        bool ok = false;
        std::vector<uint8_t> bytes = decoded(d, n, rfc::scalarKernels(), ok);
        for (const rfc::Kernels *k : fuzz::vectorKernels()) {
            bool vectorOk = false;
            PB_ASSERT( decoded(d, n, *k, vectorOk) == bytes && vectorOk == ok );
        }
        if (ok)
            roundTrip(bytes, limit);

        pb::Ref<PB_BUFFER> text = pb::adopt(pbBufferCreateFromBytesCopy(d, static_cast<PB_INT>(n)));
        pb::Ref<RFC_QUOP_OPTIONS> options = pb::adopt(rfcQuopOptionsCreate());
        pb::Ref<PB_BUFFER> result = pb::adopt(rfcQuopTryDecodeWithOptions(text.get(), options.get()));
        PB_ASSERT( ok == (result.get() != nullptr) );
        pb::Ref<PB_BUFFER> encodedText = pb::adopt(rfcQuopEncodeWithOptions(text.get(), options.get()));
        PB_ASSERT( encodedText );
    });
}
