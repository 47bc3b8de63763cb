#include <mime/mime_content_id.h>
#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_decode.h>
#include <mime/mime_defect.hpp>
#include <pb/pb_ref.hpp>
#include <rfc/rfc_base.h>
#include <rfc/rfc_quop.h>

using pb::adopt;
using pb::Ref;

namespace {

template <class T> void clear(T **result)
{
    if (result && *result) {
        pb::release(*result);
        *result = nullptr;
    }
}

template <class T> void handOut(T **result, Ref<T> &value)
{
    if (result)
        *result = value.release();
}

// The body out of its transfer encoding; null when the body text is invalid.
Ref<PB_BUFFER> decodedBody(PB_BUFFER *body, MIME_CONTENT_TRANSFER_ENCODING cte, MIME_OPTIONS *opt)
{
    Ref<PB_BUFFER> decoded;
    if (cte == MIME_CONTENT_TRANSFER_ENCODING_BASE64) {
        Ref<RFC_BASE_OPTIONS> options = adopt(mimeOptionsRfcBaseOptions(opt));
        decoded = adopt(rfcBaseTryDecodeWithOptions(body, RFC_BASE_VARIANT_BASE64, options.get()));
    } else if (cte == MIME_CONTENT_TRANSFER_ENCODING_QUOTED_PRINTABLE) {
        Ref<RFC_QUOP_OPTIONS> options = adopt(mimeOptionsRfcQuopOptions(opt));
        decoded = adopt(rfcQuopTryDecodeWithOptions(body, options.get()));
    } else {
        decoded = pb::retained(body);
    }
    return decoded;
}

// Why the body text of cte is invalid: the offset the tolerant decoder names.
void reportBody(MIME_DEFECT **defect, PB_BUFFER *body, MIME_CONTENT_TRANSFER_ENCODING cte)
{
    if (!defect)
        return;
    PB_INT fault = 0;
    bool base64 = cte == MIME_CONTENT_TRANSFER_ENCODING_BASE64;
    Ref<PB_BUFFER> tolerant = adopt(base64 ? rfcBaseDecodeTolerant(body, RFC_BASE_VARIANT_BASE64, &fault)
                                           : rfcQuopDecodeTolerant(body, &fault));
    mime::report(defect, MIME_DEFECT_BODY_INVALID, fault, base64 ? "base64" : "quoted-printable");
}

} // namespace

PB_BOOL mimeDecode(MIME_ENTITY *entity, MIME_OPTIONS *opt, PB_BUFFER **body, MIME_CONTENT_TYPE **contentType,
                   MIME_CONTENT_DISPOSITION **contentDisposition, PB_STRING **contentId) noexcept
{
    PB_ASSERT( entity );
    PB_ASSERT( opt );
    return mimeDecodeWithDefect(entity, opt, body, contentType, contentDisposition, contentId, nullptr);
}

PB_BOOL mimeDecodeWithDefect(MIME_ENTITY *entity, MIME_OPTIONS *opt, PB_BUFFER **body, MIME_CONTENT_TYPE **contentType,
                             MIME_CONTENT_DISPOSITION **contentDisposition, PB_STRING **contentId,
                             MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( entity );
    PB_ASSERT( opt );
    clear(body);
    clear(contentType);
    clear(contentDisposition);
    clear(contentId);
    mime::clearDefect(defect);

    Ref<MIME_CONTENT_TYPE> type;
    if (Ref<PB_STRING> text = adopt(mimeEntityContentType(entity))) {
        if (!(type = adopt(mimeContentTypeTryDecodeWithDefect(text.get(), opt, defect))))
            return 0;
    }
    Ref<MIME_CONTENT_DISPOSITION> disposition;
    if (Ref<PB_STRING> text = adopt(mimeEntityContentDisposition(entity))) {
        if (!(disposition = adopt(mimeContentDispositionTryDecodeWithDefect(text.get(), opt, defect))))
            return 0;
    }
    MIME_CONTENT_TRANSFER_ENCODING cte = MIME_CONTENT_TRANSFER_ENCODING_BINARY;
    if (Ref<PB_STRING> text = adopt(mimeEntityContentTransferEncoding(entity))) {
        cte = mimeContentTransferEncodingTryDecodeWithDefect(text.get(), opt, defect);
        if (!MIME_CONTENT_TRANSFER_ENCODING_OK(cte))
            return 0;
    }
    Ref<PB_STRING> id;
    if (Ref<PB_STRING> text = adopt(mimeEntityContentId(entity))) {
        if (!(id = adopt(mimeContentIdTryDecodeWithDefect(text.get(), defect))))
            return 0;
    }
    Ref<PB_BUFFER> decoded;
    if (Ref<PB_BUFFER> raw = adopt(mimeEntityBody(entity))) {
        if (!(decoded = decodedBody(raw.get(), cte, opt))) {
            reportBody(defect, raw.get(), cte);
            return 0;
        }
    }
    handOut(body, decoded);
    handOut(contentType, type);
    handOut(contentDisposition, disposition);
    handOut(contentId, id);
    return 1;
}
