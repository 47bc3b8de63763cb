#include <mime/mime_entity.h>
#include <mime/mime_entity_fields.hpp>
#include <mime/mime_object.hpp>

#include <string_view>

struct MIME_ENTITY {
    PB_OBJ_HEADER header;
    PB_STRING *contentType;
    PB_STRING *contentDisposition;
    PB_STRING *contentTransferEncoding;
    PB_STRING *contentId;
    PB_BUFFER *body;
};

namespace {
extern "C" {
static void mime___EntityFreeFunc(PB_OBJ *obj) noexcept;
}
} // namespace

MIME___SORT_DEFINE(Entity, MIME_ENTITY, mime___EntityFreeFunc, nullptr, nullptr)

namespace {

void mime___EntityFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_ENTITY *ent = mimeEntityFrom(obj);
    PB_ASSERT( ent );
    pb::releaseField(ent->contentType);
    pb::releaseField(ent->contentDisposition);
    pb::releaseField(ent->contentTransferEncoding);
    pb::releaseField(ent->contentId);
    pb::releaseField(ent->body);
}

MIME_ENTITY *createWith(PB_STRING *contentType, PB_STRING *contentDisposition, PB_STRING *contentTransferEncoding,
                        PB_STRING *contentId, PB_BUFFER *body)
{
    auto *ent = pb::create<MIME_ENTITY>(mimeEntitySort()); // every field null
    pb::setField(ent->contentType, contentType);
    pb::setField(ent->contentDisposition, contentDisposition);
    pb::setField(ent->contentTransferEncoding, contentTransferEncoding);
    pb::setField(ent->contentId, contentId);
    pb::setField(ent->body, body);
    return ent;
}

} // namespace

static_assert(mime::kEntityFieldNames[0].size() + 2 == MIME_FIRST_LINE_OFFSET_CONTENT_TYPE);
static_assert(mime::kEntityFieldNames[1].size() + 2 == MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION);
static_assert(mime::kEntityFieldNames[2].size() + 2 == MIME_FIRST_LINE_OFFSET_CONTENT_TRANSFER_ENCODING);

const char *mimeEntityFieldName(PB_INT index) noexcept
{
    PB_ASSERT( index >= 0 && index < MIME_ENTITY_FIELD_COUNT );
    return mime::kEntityFieldNames[index].data();
}

MIME_ENTITY *mimeEntityCreate(void) noexcept
{
    return createWith(nullptr, nullptr, nullptr, nullptr, nullptr);
}

MIME_ENTITY *mimeEntityCreateFrom(MIME_ENTITY *source) noexcept
{
    PB_ASSERT( source );
    return createWith(source->contentType, source->contentDisposition, source->contentTransferEncoding,
                      source->contentId, source->body);
}

// The four accessors of one field; the value argument carries the field's name,
// which is the condition text when it is null.
#define MIME___ENTITY_FIELD(Field, field, TYPE) \
    TYPE *mimeEntity##Field(MIME_ENTITY *ent) noexcept \
    { \
        PB_ASSERT( ent ); \
        if (ent->field) \
            pb::retain(ent->field); \
        return ent->field; \
    } \
    PB_BOOL mimeEntityHas##Field(MIME_ENTITY *ent) noexcept \
    { \
        PB_ASSERT( ent ); \
        return ent->field != nullptr; \
    } \
    void mimeEntitySet##Field(MIME_ENTITY **ent, TYPE *field) noexcept \
    { \
        PB_ASSERT_REF(ent); \
        PB_ASSERT( field ); \
        PB_OBJ_UNSHARE((*ent), mimeEntityCreateFrom); \
        pb::setField((*ent)->field, field); \
    } \
    void mimeEntityDel##Field(MIME_ENTITY **ent) noexcept \
    { \
        PB_ASSERT_REF(ent); \
        PB_OBJ_UNSHARE((*ent), mimeEntityCreateFrom); \
        pb::setField((*ent)->field, static_cast<TYPE *>(nullptr)); \
    }

MIME___ENTITY_FIELD(ContentType, contentType, PB_STRING)
MIME___ENTITY_FIELD(ContentDisposition, contentDisposition, PB_STRING)
MIME___ENTITY_FIELD(ContentTransferEncoding, contentTransferEncoding, PB_STRING)
MIME___ENTITY_FIELD(ContentId, contentId, PB_STRING)
MIME___ENTITY_FIELD(Body, body, PB_BUFFER)

void mimeEntitySetContentTypeCstr(MIME_ENTITY **ent, const char *text, PB_INT length) noexcept
{
    mimeEntitySetContentType(ent, pb::Text(text, length));
}

void mimeEntitySetContentTypeWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) noexcept
{
    mimeEntitySetContentType(ent, pb::Text(text, length));
}

void mimeEntitySetContentDispositionCstr(MIME_ENTITY **ent, const char *text, PB_INT length) noexcept
{
    mimeEntitySetContentDisposition(ent, pb::Text(text, length));
}

void mimeEntitySetContentDispositionWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) noexcept
{
    mimeEntitySetContentDisposition(ent, pb::Text(text, length));
}

void mimeEntitySetContentTransferEncodingCstr(MIME_ENTITY **ent, const char *text, PB_INT length) noexcept
{
    mimeEntitySetContentTransferEncoding(ent, pb::Text(text, length));
}

void mimeEntitySetContentTransferEncodingWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) noexcept
{
    mimeEntitySetContentTransferEncoding(ent, pb::Text(text, length));
}

void mimeEntitySetContentIdCstr(MIME_ENTITY **ent, const char *text, PB_INT length) noexcept
{
    mimeEntitySetContentId(ent, pb::Text(text, length));
}

void mimeEntitySetContentIdWcstr(MIME_ENTITY **ent, const wchar_t *text, PB_INT length) noexcept
{
    mimeEntitySetContentId(ent, pb::Text(text, length));
}
