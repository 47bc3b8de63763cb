// Any bytes as the value of a header field (Content-ID, Content-Transfer-Encoding,
// Content-Type, Content-Disposition), the first byte choosing the field and the
// flags, the second the wrap and segment lengths:
// decoding never aborts or leaks; what decodes is encoded and decoded again,
// which must succeed with the same value (the same Content-ID, encoding, media
// type name or disposition type).
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

void contentType(PB_STRING *value, MIME_OPTIONS *mo, PB_INT offset)
{
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecode(value, mo));
    if (!type)
        return;
    Ref<PB_STRING> text = adopt(mimeContentTypeEncode(type.get(), mo, offset));
    Ref<MIME_CONTENT_TYPE> again = adopt(mimeContentTypeTryDecode(text.get(), mo));
    PB_ASSERT( again );
    Ref<PB_STRING> name = adopt(mimeContentTypeName(type.get())), name2 = adopt(mimeContentTypeName(again.get()));
    PB_ASSERT( pbStringCompare(name.get(), name2.get()) == 0 );
}

void contentDisposition(PB_STRING *value, MIME_OPTIONS *mo, PB_INT offset)
{
    Ref<MIME_CONTENT_DISPOSITION> disp = adopt(mimeContentDispositionTryDecode(value, mo));
    if (!disp)
        return;
    Ref<PB_STRING> text = adopt(mimeContentDispositionEncode(disp.get(), mo, offset));
    Ref<MIME_CONTENT_DISPOSITION> again = adopt(mimeContentDispositionTryDecode(text.get(), mo));
    PB_ASSERT( again );
    Ref<PB_STRING> type = adopt(mimeContentDispositionType(disp.get()));
    Ref<PB_STRING> type2 = adopt(mimeContentDispositionType(again.get()));
    PB_ASSERT( pbStringCompare(type.get(), type2.get()) == 0 );
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
        mimeOptionsSetFlags(mo.addr(), d[0] >> 2);
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), d[1] % 8 == 0 ? -1 : d[1] % 70 + 1);
        switch (d[0] % 4) {
        case 0:
            contentId(value.get());
            break;
        case 1:
            transferEncoding(value.get(), mo.get(), d[1] % 40);
            break;
        case 2:
            contentType(value.get(), mo.get(), d[1] % 40);
            break;
        default:
            contentDisposition(value.get(), mo.get(), d[1] % 40);
            break;
        }
    });
}
