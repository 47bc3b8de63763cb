// Any bytes as the value of a header field, the first byte choosing the field:
// decoding never aborts or leaks; what decodes is encoded and decoded again,
// which must succeed with the same value.
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <pb/pb_ref.hpp>

using pb::adopt;
using pb::Ref;

namespace {

void contentId(PB_STRING *value)
{
    Ref<PB_STRING> cid = adopt(mimeContentIdTryDecode(value));
    if (!cid)
        return;
    Ref<PB_STRING> again = adopt(mimeContentIdTryDecode(adopt(mimeContentIdEncode(cid.get())).get()));
    PB_ASSERT( again && pbStringCompare(again.get(), cid.get()) == 0 );
}

void transferEncoding(PB_STRING *value, MIME_OPTIONS *mo, PB_INT offset)
{
    MIME_CONTENT_TRANSFER_ENCODING cte = mimeContentTransferEncodingTryDecode(value, mo);
    if (cte == -1)
        return;
    PB_ASSERT( MIME_CONTENT_TRANSFER_ENCODING_OK( cte ) );
    Ref<PB_STRING> text = adopt(mimeContentTransferEncodingEncode(cte, mo, offset));
    PB_ASSERT( mimeContentTransferEncodingTryDecode(text.get(), mo) == cte );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        if (n < 2)
            return;
        Ref<PB_STRING> value = adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d + 2),
                                                            static_cast<PB_INT>(n - 2)));
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetWrapLineLength(mo.addr(), d[1] % 90 - 1);
        switch (d[0] % 2) {
        case 0:
            contentId(value.get());
            break;
        default:
            transferEncoding(value.get(), mo.get(), d[1] % 40);
            break;
        }
    });
}
