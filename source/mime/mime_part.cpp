#include <mime/mime_entity_fields.hpp>
#include <mime/mime_object.hpp>
#include <mime/mime_part.hpp>
#include <pb/pb_utf8.hpp>

#include <algorithm>
#include <cstring>

struct MIME_PART {
    PB_OBJ_HEADER header;
    PB_BUFFER *input;
    PB_INT contentFields[MIME_ENTITY_FIELD_COUNT];
    MIME_CONTENT_TYPE *contentType;
    PB_BOOL contentTypeImplied;
    MIME_CONTENT_DISPOSITION *contentDisposition;
    PB_STRING *contentId;
    MIME_CONTENT_TRANSFER_ENCODING transferEncoding;
    PB_BOOL hasBody;
    PB_BUFFER *decodedBody;
    PB_INT offset, length, bodyOffset, bodyLength;
    PB_VECTOR *children;
    PB_VECTOR *defects;
    PB_INT fieldCount;
    mime::FieldSpan *fields; // owned, std::free
    PB_INT numberLength;
    char number[]; // numberLength characters, in the same allocation
};

namespace {
extern "C" {
static void mime___PartFreeFunc(PB_OBJ *obj) noexcept;
}
} // namespace

MIME___SORT_DEFINE(Part, MIME_PART, mime___PartFreeFunc, nullptr, nullptr)

namespace {

void mime___PartFreeFunc(PB_OBJ *obj) noexcept
{
    MIME_PART *part = mimePartFrom(obj);
    pb::releaseField(part->input);
    pb::releaseField(part->contentType);
    pb::releaseField(part->contentDisposition);
    pb::releaseField(part->contentId);
    pb::releaseField(part->decodedBody);
    std::free(part->fields);
    pb::releaseField(part->children);
    pb::releaseField(part->defects);
}

bool isTrimmed(PB_BYTE c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Text of bytes: UTF-8 when they are, else Latin-1.
PB_STRING *text(const PB_BYTE *b, PB_INT n)
{
    if (pb::utf8::wellFormedLength(b, static_cast<size_t>(n)) == static_cast<size_t>(n))
        return pbStringCreateFromCstr(reinterpret_cast<const char *>(b), n);
    PB_STRING *s = pbStringCreate();
    constexpr PB_INT kPiece = 256;
    PB_CHAR chars[kPiece];
    for (PB_INT at = 0; at < n; at += kPiece) {
        PB_INT count = n - at < kPiece ? n - at : kPiece;
        for (PB_INT i = 0; i < count; ++i)
            chars[i] = b[at + i];
        pbStringAppendChars(&s, chars, count);
    }
    return s;
}

PB_INT checkedIndex(PB_INT index, PB_INT count)
{
    PB_ASSERT( index >= 0 && index < count );
    return index;
}

template <class T> T *handedOut(T *field)
{
    return pb::retained(field).release();
}

} // namespace

PB_STRING *mime::fieldValue(const PB_BYTE *input, const FieldSpan &field) noexcept
{
    PB_INT from = field.value, end = field.end;
    while (from < end && isTrimmed(input[from]))
        ++from;
    while (end > from && isTrimmed(input[end - 1]))
        --end;
    const PB_BYTE *b = input + from;
    PB_INT n = end - from;
    if (!std::memchr(b, '\n', static_cast<size_t>(n)))
        return text(b, n);
    // Unfold: drop each line end (LF, and a CR before it) inside the value.
    std::string joined;
    joined.reserve(static_cast<size_t>(n));
    for (PB_INT i = 0; i < n; ++i) {
        if (b[i] == '\n') {
            if (!joined.empty() && joined.back() == '\r')
                joined.pop_back();
            continue;
        }
        joined.push_back(static_cast<char>(b[i]));
    }
    return text(reinterpret_cast<const PB_BYTE *>(joined.data()), static_cast<PB_INT>(joined.size()));
}

MIME_PART *mime::createPart(PartContents &c) noexcept
{
    size_t size = sizeof(MIME_PART) + c.number.size();
    auto *part = reinterpret_cast<MIME_PART *>(pb___ObjCreate(static_cast<PB_INT>(size), mimePartSort()));
    pb::setField(part->input, c.input);
    std::memcpy(part->contentFields, c.contentFields, sizeof part->contentFields);
    part->contentType = c.contentType.release();
    part->contentTypeImplied = c.contentTypeImplied;
    part->contentDisposition = c.contentDisposition.release();
    part->contentId = c.contentId.release();
    part->transferEncoding = c.transferEncoding;
    part->hasBody = c.hasBody;
    part->decodedBody = c.decodedBody.release();
    part->offset = c.offset;
    part->length = c.length;
    part->bodyOffset = c.bodyOffset;
    part->bodyLength = c.bodyLength;
    part->children = c.children.release();
    part->defects = c.defects.release();
    part->fieldCount = static_cast<PB_INT>(c.fields.size());
    part->fields = c.fields.release();
    part->numberLength = static_cast<PB_INT>(c.number.size());
    std::memcpy(part->number, c.number.data(), c.number.size());
    return part;
}

PB_STRING *mimePartNumber(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return pbStringCreateFromCstr(part->number, part->numberLength);
}

PB_INT mimePartFieldCount(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->fieldCount;
}

PB_STRING *mimePartFieldNameAt(MIME_PART *part, PB_INT index) noexcept
{
    PB_ASSERT( part );
    const mime::FieldSpan &f = part->fields[checkedIndex(index, part->fieldCount)];
    return text(pbBufferBacking(part->input) + f.name, f.nameLength);
}

PB_STRING *mimePartFieldValueAt(MIME_PART *part, PB_INT index) noexcept
{
    PB_ASSERT( part );
    return mime::fieldValue(pbBufferBacking(part->input), part->fields[checkedIndex(index, part->fieldCount)]);
}

PB_STRING *mimePartField(MIME_PART *part, PB_STRING *name) noexcept
{
    PB_ASSERT( part );
    PB_ASSERT( name );
    const PB_CHAR *c = pbStringBacking(name);
    PB_INT n = pbStringLength(name);
    const PB_BYTE *input = pbBufferBacking(part->input);
    // A name beyond ASCII can only be a field's name as read, bytes decoded;
    // an ASCII one is compared with the bytes (others never match).
    const bool ascii = std::all_of(c, c + n, [](PB_CHAR x) { return x < 0x80; });
    auto lowered = [](PB_CHAR x) { return x >= 'A' && x <= 'Z' ? x + 32 : x; };
    for (PB_INT f = 0; f < part->fieldCount; ++f) {
        const mime::FieldSpan &field = part->fields[f];
        if (!ascii) {
            if (field.nameLength >= n &&
                pbStringEqualsCaseFold(pb::adopt(text(input + field.name, field.nameLength)).get(), name))
                return mime::fieldValue(input, field);
            continue;
        }
        if (field.nameLength != n)
            continue;
        PB_INT i = 0;
        while (i < n && lowered(input[field.name + i]) == lowered(c[i]))
            ++i;
        if (i == n)
            return mime::fieldValue(input, field);
    }
    return nullptr;
}

PB_STRING *mimePartFieldCstr(MIME_PART *part, const char *name, PB_INT length) noexcept
{
    return mimePartField(part, pb::Text(name, length));
}

PB_STRING *mimePartFieldWcstr(MIME_PART *part, const wchar_t *name, PB_INT length) noexcept
{
    return mimePartField(part, pb::Text(name, length));
}

MIME_ENTITY *mimePartEntity(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    static void (*const setters[MIME_ENTITY_FIELD_COUNT])(MIME_ENTITY **, PB_STRING *) = {
        mimeEntitySetContentType, mimeEntitySetContentDisposition, mimeEntitySetContentTransferEncoding,
        mimeEntitySetContentId};
    MIME_ENTITY *entity = mimeEntityCreate();
    for (int f = 0; f < MIME_ENTITY_FIELD_COUNT; ++f) {
        if (part->contentFields[f] < 0)
            continue;
        pb::Ref<PB_STRING> value = pb::adopt(mimePartFieldValueAt(part, part->contentFields[f]));
        setters[f](&entity, value.get());
    }
    if (part->hasBody) {
        pb::Ref<PB_BUFFER> raw = pb::adopt(pbBufferRead(part->input, part->bodyOffset, part->bodyLength));
        mimeEntitySetBody(&entity, raw.get());
    }
    return entity;
}

MIME_CONTENT_TYPE *mimePartContentType(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return handedOut(part->contentType);
}

PB_BOOL mimePartContentTypeImplied(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->contentTypeImplied;
}

MIME_CONTENT_DISPOSITION *mimePartContentDisposition(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->contentDisposition ? handedOut(part->contentDisposition) : nullptr;
}

PB_STRING *mimePartContentId(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->contentId ? handedOut(part->contentId) : nullptr;
}

MIME_CONTENT_TRANSFER_ENCODING mimePartTransferEncoding(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->transferEncoding;
}

PB_BUFFER *mimePartBody(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    if (part->decodedBody)
        return handedOut(part->decodedBody);
    return part->hasBody ? pbBufferRead(part->input, part->bodyOffset, part->bodyLength) : nullptr;
}

PB_INT mimePartOffset(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->offset;
}

PB_INT mimePartLength(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->length;
}

PB_INT mimePartBodyOffset(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->bodyOffset;
}

PB_INT mimePartBodyLength(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->bodyLength;
}

PB_INT mimePartChildCount(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->children ? pbVectorLength(part->children) : 0;
}

MIME_PART *mimePartChildAt(MIME_PART *part, PB_INT index) noexcept
{
    PB_ASSERT( part );
    return mimePartFrom(pbVectorObjAt(part->children, checkedIndex(index, mimePartChildCount(part))));
}

PB_INT mimePartDefectCount(MIME_PART *part) noexcept
{
    PB_ASSERT( part );
    return part->defects ? pbVectorLength(part->defects) : 0;
}

MIME_DEFECT *mimePartDefectAt(MIME_PART *part, PB_INT index) noexcept
{
    PB_ASSERT( part );
    return mimeDefectFrom(pbVectorObjAt(part->defects, checkedIndex(index, mimePartDefectCount(part))));
}
