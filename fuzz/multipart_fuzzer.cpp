// Any bytes as a multipart body with the boundary "B": unpacking never aborts or
// leaks, and what unpacks packs and unpacks again into the same parts.
#include "entity_support.hpp"
#include "fuzz_support.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        using pb::adopt;
        pb::Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        pb::Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeCreateCstr("multipart/mixed", -1));
        mimeContentTypeSetParameterCstrCstrValue(type.addr(), "boundary", -1, "B", -1);
        pb::Ref<PB_BUFFER> body = adopt(pbBufferCreateFromBytesCopy(d, static_cast<PB_INT>(n)));
        pb::Ref<PB_VECTOR> parts = adopt(mimeMultipartTryUnpack(type.get(), body.get(), mo.get()));
        if (parts && pbVectorLength(parts.get()) > 0)
            fuzz::packUnpackRoundTrip(parts.get(), mo.get());
    });
}
