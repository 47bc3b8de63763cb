// Any bytes as the value of a header field (Content-ID, Content-Transfer-Encoding,
// Content-Type, Content-Disposition), the first byte choosing the field and the
// flags, the second the wrap and segment lengths (and, for every value, the
// header value check in its PB_STRING and Cstr forms agrees):
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

// Content-Type and Content-Disposition: the same round trip, the name or type kept.
template <class T> struct LabelledCodec {
    T *(*decode)(PB_STRING *value, MIME_OPTIONS *mo);
    PB_STRING *(*encode)(T *value, MIME_OPTIONS *mo, PB_INT firstLineOffset);
    PB_STRING *(*label)(T *value);
};

template <class T> void labelled(const LabelledCodec<T> &codec, PB_STRING *value, MIME_OPTIONS *mo, PB_INT offset)
{
    Ref<T> decoded = adopt(codec.decode(value, mo));
    if (!decoded)
        return;
    Ref<PB_STRING> text = adopt(codec.encode(decoded.get(), mo, offset));
    Ref<T> again = adopt(codec.decode(text.get(), mo));
    PB_ASSERT( again );
    Ref<PB_STRING> label = adopt(codec.label(decoded.get())), label2 = adopt(codec.label(again.get()));
    PB_ASSERT( pbStringCompare(label.get(), label2.get()) == 0 );
}

const LabelledCodec<MIME_CONTENT_TYPE> contentType{mimeContentTypeTryDecode, mimeContentTypeEncode,
                                                   mimeContentTypeName};
const LabelledCodec<MIME_CONTENT_DISPOSITION> contentDisposition{
    mimeContentDispositionTryDecode, mimeContentDispositionEncode, mimeContentDispositionType};

// The header value check says the same, at the same character, in every form.
void headerValueCheck(PB_STRING *value, const uint8_t *utf8, size_t n)
{
    MIME_DEFECT *byString = nullptr, *byCstr = nullptr;
    const bool ok = mimeHeaderValueCheck(value, &byString);
    PB_ASSERT( ok == static_cast<bool>(mimeHeaderValueCheckCstr(reinterpret_cast<const char *>(utf8),
                                                                 static_cast<PB_INT>(n), &byCstr)) );
    PB_ASSERT( ok == !byString && ok == !byCstr );
    if (!ok) {
        PB_ASSERT( mimeDefectCode(byString) == MIME_DEFECT_HEADER_VALUE_UNSAFE );
        PB_ASSERT( mimeDefectOffset(byString) == mimeDefectOffset(byCstr) );
        mimeDefectRelease(byString);
        mimeDefectRelease(byCstr);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        if (n < 2)
            return;
        Ref<PB_STRING> value =
            adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d + 2), static_cast<PB_INT>(n - 2)));
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetWrapLineLength(mo.addr(), d[1] % 90 - 1);
        mimeOptionsSetFlags(mo.addr(), d[0] >> 2);
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), d[1] % 8 == 0 ? -1 : d[1] % 70 + 1);
        headerValueCheck(value.get(), d + 2, n - 2);
        switch (d[0] % 4) {
        case 0:
            contentId(value.get());
            break;
        case 1:
            transferEncoding(value.get(), mo.get(), d[1] % 40);
            break;
        case 2:
            labelled(contentType, value.get(), mo.get(), d[1] % 40);
            break;
        default:
            labelled(contentDisposition, value.get(), mo.get(), d[1] % 40);
            break;
        }
    });
}
