// Any bytes as the value of a header field (Content-ID, Content-Transfer-Encoding,
// Content-Type, Content-Disposition), the first byte choosing the field and the
// flags, the second the wrap and segment lengths: decoding never aborts or
// leaks; what decodes is encoded and decoded again, which must succeed with the
// same value (the same Content-ID, encoding, media type name or disposition
// type). The Cstr and Wcstr forms of each function say what the PB_STRING form
// says, on the same text (the header value check on every value).
#include "checks.hpp"
#include "entity_support.hpp"
#include "fuzz_support.hpp"

#include <mime/mime.h>
#include <pb/pb_ref.hpp>

using pb::adopt;
using pb::Ref;

namespace {

using fuzz::Forms;

// Equal strings, or both null.
bool same(PB_STRING *a, PB_STRING *b)
{
    return !a == !b && (!a || pbStringCompare(a, b) == 0);
}

// A Content-ID, and one encoded by each form and by an entity of its own.
void contentId(const Forms &value, MIME_OPTIONS *mo)
{
    Ref<PB_STRING> cid = adopt(mimeContentIdTryDecode(value.string.get()));
    PB_ASSERT( same(cid.get(), adopt(mimeContentIdTryDecodeCstr(value.utf8.data(), value.utf8Length())).get()) );
    PB_ASSERT( same(cid.get(), adopt(mimeContentIdTryDecodeWcstr(value.wide.data(), value.wideLength())).get()) );
    const Forms id(cid ? cid.get() : adopt(mimeContentIdGenerate()).get());
    PB_ASSERT( mimeContentIdOk(id.string.get()) && mimeContentIdOkCstr(id.utf8.data(), id.utf8UpToNul()) &&
               mimeContentIdOkWcstr(id.wide.data(), id.wideLength()) );
    Ref<PB_STRING> text = adopt(mimeContentIdEncode(id.string.get()));
    PB_ASSERT( same(text.get(), adopt(mimeContentIdEncodeCstr(id.utf8.data(), id.utf8Length())).get()) );
    PB_ASSERT( same(text.get(), adopt(mimeContentIdEncodeWcstr(id.wide.data(), id.wideUpToNul())).get()) );
    PB_ASSERT( same(adopt(mimeContentIdTryDecode(text.get())).get(), id.string.get()) );
    Ref<MIME_ENTITY> entity = adopt(mimeEncode(mo, nullptr, nullptr, nullptr, id.string.get()));
    Ref<MIME_ENTITY> byCstr = adopt(mimeEncodeCstr(mo, nullptr, nullptr, nullptr, id.utf8.data(), id.utf8Length()));
    Ref<MIME_ENTITY> byWcstr = adopt(mimeEncodeWcstr(mo, nullptr, nullptr, nullptr, id.wide.data(), id.wideUpToNul()));
    PB_ASSERT( fuzz::sameEntity(entity.get(), byCstr.get()) && fuzz::sameEntity(entity.get(), byWcstr.get()) );
    fuzz::ordered(entity.get(), byCstr.get(), mimeEntityCompare, mimeEntityEquals);
    PB_ASSERT( same(adopt(mimeEntityContentId(entity.get())).get(), text.get()) );
}

void transferEncoding(const Forms &value, MIME_OPTIONS *mo, PB_INT offset)
{
    MIME_CONTENT_TRANSFER_ENCODING cte = mimeContentTransferEncodingTryDecode(value.string.get(), mo);
    PB_ASSERT( cte == mimeContentTransferEncodingTryDecodeCstr(value.utf8.data(), value.utf8Length(), mo) );
    PB_ASSERT( cte == mimeContentTransferEncodingTryDecodeWcstr(value.wide.data(), value.wideUpToNul(), mo) );
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

// The header value check says the same, at the same character, in every form
// (the raw bytes for the Cstr form: invalid UTF-8 reads as the PB_STRING did).
void headerValueCheck(const Forms &value, const uint8_t *raw, size_t n)
{
    Ref<MIME_DEFECT> byString, byCstr, byWcstr;
    const bool ok = mimeHeaderValueCheck(value.string.get(), byString.addr());
    PB_ASSERT( ok == static_cast<bool>(mimeHeaderValueCheckCstr(reinterpret_cast<const char *>(raw),
                                                                 static_cast<PB_INT>(n), byCstr.addr())) );
    PB_ASSERT( ok == static_cast<bool>(mimeHeaderValueCheckWcstr(value.wide.data(), value.wideLength(),
                                                                  byWcstr.addr())) );
    PB_ASSERT( ok == !byString && ok == !byCstr && ok == !byWcstr );
    if (!ok) {
        PB_ASSERT( mimeDefectCode(byString.get()) == MIME_DEFECT_HEADER_VALUE_UNSAFE );
        PB_ASSERT( mimeDefectEquals(byString.get(), byCstr.get()) &&
                   mimeDefectCompare(byWcstr.get(), byString.get()) == 0 );
        PB_ASSERT( adopt(mimeDefectToString(byString.get())) );
    }
}

// Whether the value would do as a boundary, in every form.
void boundary(const Forms &value)
{
    const bool ok = mimeMultipartBoundaryOk(value.string.get());
    PB_ASSERT( ok == static_cast<bool>(mimeMultipartBoundaryOkCstr(value.utf8.data(), value.utf8Length())) );
    PB_ASSERT( ok == static_cast<bool>(mimeMultipartBoundaryOkWcstr(value.wide.data(), value.wideUpToNul())) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        if (n < 2)
            return;
        const Forms value(
            adopt(pbStringCreateFromCstr(reinterpret_cast<const char *>(d + 2), static_cast<PB_INT>(n - 2))).get());
        Ref<MIME_OPTIONS> mo = adopt(mimeOptionsCreate());
        mimeOptionsSetWrapLineLength(mo.addr(), d[1] % 90 - 1);
        mimeOptionsSetFlags(mo.addr(), d[0] >> 2);
        mimeOptionsSetRfc2231MaxSegmentLength(mo.addr(), d[1] % 8 == 0 ? -1 : d[1] % 70 + 1);
        headerValueCheck(value, d + 2, n - 2);
        switch (d[0] % 4) {
        case 0:
            contentId(value, mo.get());
            break;
        case 1:
            transferEncoding(value, mo.get(), d[1] % 40);
            break;
        case 2:
            boundary(value);
            labelled(contentType, value.string.get(), mo.get(), d[1] % 40);
            break;
        default:
            labelled(contentDisposition, value.string.get(), mo.get(), d[1] % 40);
            break;
        }
    });
}
