#include <mime/mime_char.hpp>
#include <mime/mime_content_id.h>
#include <mime/mime_defect.hpp>
#include <pb/pb_abort.h>
#include <pb/pb_identifier.h>
#include <pb/pb_text.hpp>

using namespace mime::chars;

PB_BOOL mimeContentIdOk(PB_STRING *cid) noexcept
{
    PB_ASSERT( cid );
    const PB_CHAR *c = pbStringBacking(cid);
    PB_INT n = pbStringLength(cid);
    for (PB_INT i = 0; i < n; ++i)
        if (is(c[i], kCtl))
            return PB_FALSE;
    return n > 0;
}

PB_STRING *mimeContentIdGenerate(void) noexcept
{
    return pbStringCreateFromFormatCstr("%~o@%~o", -1, pbIdentifierObj(pbIdentifierCreate()),
                                        pbIdentifierObj(pbIdentifierCreate()));
}

PB_STRING *mimeContentIdEncode(PB_STRING *cid) noexcept
{
    PB_ASSERT( mimeContentIdOk( cid ) );
    return pbStringCreateFromFormatCstr("<%s>", -1, cid);
}

PB_STRING *mimeContentIdTryDecode(PB_STRING *raw) noexcept
{
    PB_ASSERT( raw );
    return mimeContentIdTryDecodeWithDefect(raw, nullptr);
}

PB_STRING *mimeContentIdTryDecodeWithDefect(PB_STRING *raw, MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( raw );
    mime::clearDefect(defect);
    const PB_CHAR *c = pbStringBacking(raw);
    PB_INT begin = 0, end = pbStringLength(raw);
    while (begin < end && is(c[begin], kLwsp))
        ++begin;
    while (end > begin && is(c[end - 1], kLwsp))
        --end;
    if (end - begin < 3 || c[begin] != '<' || c[end - 1] != '>') {
        mime::report(defect, MIME_DEFECT_CONTENT_ID_INVALID, begin);
        return nullptr;
    }
    PB_STRING *cid = pbStringCreateFromInner(raw, begin + 1, end - begin - 2);
    if (mimeContentIdOk(cid))
        return cid;
    pbStringRelease(cid);
    mime::report(defect, MIME_DEFECT_CONTENT_ID_INVALID, begin + 1);
    return nullptr;
}

PB_BOOL mimeContentIdOkCstr(const char *text, PB_INT length) noexcept
{
    return mimeContentIdOk(pb::Text(text, length));
}

PB_BOOL mimeContentIdOkWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeContentIdOk(pb::Text(text, length));
}

PB_STRING *mimeContentIdEncodeCstr(const char *text, PB_INT length) noexcept
{
    return mimeContentIdEncode(pb::Text(text, length));
}

PB_STRING *mimeContentIdEncodeWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeContentIdEncode(pb::Text(text, length));
}

PB_STRING *mimeContentIdTryDecodeCstr(const char *text, PB_INT length) noexcept
{
    return mimeContentIdTryDecode(pb::Text(text, length));
}

PB_STRING *mimeContentIdTryDecodeWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeContentIdTryDecode(pb::Text(text, length));
}
