#include <mime/mime_byte_search.hpp>
#include <mime/mime_char.hpp>
#include <mime/mime_defect.hpp>
#include <mime/mime_entity_fields.hpp>
#include <mime/mime_entity_parse.h>
#include <mime/mime_multipart.h>
#include <pb/pb_random.h>
#include <pb/pb_ref.hpp>
#include <pb/pb_text.hpp>
#include <pb/pb_utf8.hpp>

#include <cstring>
#include <string_view>
#include <vector>

using pb::adopt;
using pb::Ref;

PB_BOOL mimeMultipartBoundaryOk(PB_STRING *pbs) noexcept
{
    PB_ASSERT( pbs );
    const PB_CHAR *c = pbStringBacking(pbs);
    PB_INT n = pbStringLength(pbs);
    if (n == 0 || n > 70)
        return PB_FALSE;
    using namespace mime::chars;
    for (PB_INT i = 0; i < n - 1; ++i)
        if (c[i] != ' ' && !is(c[i], kBcharNospace))
            return PB_FALSE;
    return is(c[n - 1], kBcharNospace);
}

PB_STRING *mimeMultipartBoundaryGenerate(void) noexcept
{
    static const char chs[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    PB_CHAR text[10];
    for (PB_CHAR &c : text)
        c = static_cast<PB_CHAR>(chs[pbRandomNonNegativeIntRange(0, 61)]);
    return pbStringCreateFromCharsCopy(text, 10);
}

namespace {

// CR LF "--" and a valid boundary, as bytes (one per character: a valid
// boundary is ASCII).
class Delimiter {
public:
    explicit Delimiter(PB_STRING *boundary)
    {
        PB_ASSERT( mimeMultipartBoundaryOk( boundary ) );
        const PB_CHAR *c = pbStringBacking(boundary);
        length_ = 4 + pbStringLength(boundary);
        std::memcpy(bytes_, "\r\n--", 4);
        for (PB_INT i = 4; i < length_; ++i)
            bytes_[i] = static_cast<PB_BYTE>(c[i - 4]);
    }
    // CR LF "--" and the boundary.
    const PB_BYTE *withCrLf() const { return bytes_; }
    PB_INT withCrLfLength() const { return length_; }
    // "--" and the boundary.
    const PB_BYTE *dashed() const { return bytes_ + 2; }
    PB_INT dashedLength() const { return length_ - 2; }
    const PB_BYTE *boundary() const { return bytes_ + 4; }
    PB_INT boundaryLength() const { return length_ - 4; }

    // The index of CR LF "--" boundary at or after offset, or 0 for "--" boundary
    // at the very start (when offset is 0); -1 when there is none. The bytes after
    // the boundary are not looked at.
    PB_INT find(const PB_BYTE *b, PB_INT n, PB_INT offset) const
    {
        PB_ASSERT( offset >= 0 );
        PB_ASSERT( offset <= n );
        if (offset == 0 && n >= dashedLength() && std::memcmp(b, dashed(), static_cast<size_t>(dashedLength())) == 0)
            return 0;
        return mime::bytes::find(b, n, offset, withCrLf(), withCrLfLength());
    }

private:
    PB_BYTE bytes_[4 + 70];
    PB_INT length_;
};

bool bodyHolds(MIME_ENTITY *ent, const Delimiter &delimiter)
{
    Ref<PB_BUFFER> body = adopt(mimeEntityBody(ent));
    return body && delimiter.find(pbBufferBacking(body.get()), pbBufferLength(body.get()), 0) >= 0;
}

// The first boundary of the 10 attempts that no body holds, or null.
Ref<PB_STRING> freeBoundary(MIME_CONTENT_TYPE *contentType, PB_VECTOR *entities)
{
    Ref<PB_STRING> boundary = adopt(mimeContentTypeParameterCstr(contentType, "boundary", -1));
    if (!boundary || !mimeMultipartBoundaryOk(boundary.get()))
        boundary = adopt(mimeMultipartBoundaryGenerate());
    for (int attempt = 1;; ++attempt) {
        Delimiter delimiter(boundary.get());
        bool collision = false;
        for (PB_INT i = 0; i < pbVectorLength(entities) && !collision; ++i)
            collision = bodyHolds(mimeEntityFrom(adopt(pbVectorObjAt(entities, i)).get()), delimiter);
        if (!collision)
            return boundary;
        if (attempt == 10)
            return {};
        boundary = adopt(mimeMultipartBoundaryGenerate());
    }
}

// The header lines and body of one entity, measured first and then written into
// space reserved for the whole result.
class PartWriter {
public:
    explicit PartWriter(MIME_ENTITY *ent)
        : values_{adopt(mimeEntityContentType(ent)), adopt(mimeEntityContentDisposition(ent)),
                  adopt(mimeEntityContentTransferEncoding(ent)), adopt(mimeEntityContentId(ent))},
          body_(adopt(mimeEntityBody(ent)))
    {
    }

    // Bytes of the header lines, the empty line and the body; -1 when a value
    // has no UTF-8 form.
    PB_INT size() const
    {
        PB_INT size = 2 + (body_ ? pbBufferLength(body_.get()) : 0);
        for (int f = 0; f < MIME_ENTITY_FIELD_COUNT; ++f) {
            if (!values_[f])
                continue;
            const PB_CHAR *c = pbStringBacking(values_[f].get());
            PB_INT n = pbStringLength(values_[f].get());
            size += static_cast<PB_INT>(mime::kEntityFieldNames[f].size()) + 4 + n; // ": " and CR LF
            for (PB_INT i = 0; i < n; ++i) {
                if (c[i] < 0x80)
                    continue;
                if (!pb::utf8::isScalar(c[i]))
                    return -1;
                size += pb::utf8::encodedLength(c[i]) - 1;
            }
        }
        return size;
    }

    PB_BYTE *write(PB_BYTE *out) const
    {
        for (int f = 0; f < MIME_ENTITY_FIELD_COUNT; ++f) {
            if (!values_[f])
                continue;
            out = put(out, mime::kEntityFieldNames[f].data(), mime::kEntityFieldNames[f].size());
            out = put(out, ": ", 2);
            const PB_CHAR *c = pbStringBacking(values_[f].get());
            for (PB_INT i = 0, n = pbStringLength(values_[f].get()); i < n; ++i) {
                if (c[i] < 0x80)
                    *out++ = static_cast<PB_BYTE>(c[i]);
                else
                    out += pb::utf8::encode(c[i], out);
            }
            out = put(out, "\r\n", 2);
        }
        out = put(out, "\r\n", 2);
        if (body_)
            out = put(out, pbBufferBacking(body_.get()), static_cast<size_t>(pbBufferLength(body_.get())));
        return out;
    }

    static PB_BYTE *put(PB_BYTE *out, const void *bytes, size_t n)
    {
        std::memcpy(out, bytes, n);
        return out + n;
    }

private:
    Ref<PB_STRING> values_[MIME_ENTITY_FIELD_COUNT];
    Ref<PB_BUFFER> body_;
};

} // namespace

PB_BUFFER *mimeMultipartTryPack(MIME_CONTENT_TYPE **contentType, PB_VECTOR *entities, MIME_OPTIONS *opt) noexcept
{
    PB_ASSERT_REF(contentType);
    PB_ASSERT( pbVectorLength( entities ) );
    PB_ASSERT( pbVectorContainsOnly( entities, mimeEntitySort() ) );
    PB_ASSERT( opt );
    Ref<PB_STRING> boundary = freeBoundary(*contentType, entities);
    if (!boundary)
        return nullptr;
    Delimiter delimiter(boundary.get());
    PB_INT count = pbVectorLength(entities);
    std::vector<PartWriter> parts;
    parts.reserve(static_cast<size_t>(count));
    // Each part: its delimiter line ("--" boundary CR LF, after CR LF but for the
    // first), its lines; then CR LF "--" boundary "--" CR LF.
    PB_INT total = (count - 1) * 2 + 2 + delimiter.dashedLength() + 4;
    for (PB_INT i = 0; i < count; ++i) {
        parts.emplace_back(mimeEntityFrom(adopt(pbVectorObjAt(entities, i)).get()));
        PB_INT size = parts.back().size();
        if (size < 0)
            return nullptr;
        total += delimiter.dashedLength() + 2 + size;
    }
    Ref<PB_BUFFER> result = adopt(pbBufferCreate());
    PB_BYTE *out = pbBufferAppendSpace(result.addr(), total);
    auto putDelimiter = [&](bool first) {
        out = first ? PartWriter::put(out, delimiter.dashed(), static_cast<size_t>(delimiter.dashedLength()))
                    : PartWriter::put(out, delimiter.withCrLf(), static_cast<size_t>(delimiter.withCrLfLength()));
    };
    for (PB_INT i = 0; i < count; ++i) {
        putDelimiter(i == 0);
        out = PartWriter::put(out, "\r\n", 2);
        out = parts[static_cast<size_t>(i)].write(out);
    }
    putDelimiter(false);
    out = PartWriter::put(out, "--\r\n", 4);
    PB_ASSERT( out == pbBufferBacking( result.get() ) + total );
    mimeContentTypeSetParameterCstr(contentType, "boundary", -1, boundary.get());
    return result.release();
}

namespace {

// Steps over the delimiter line at *at (CR LF "--" boundary, or "--" boundary at
// the start) and its padding. Returns false when the line is malformed, else
// sets *closing when the delimiter is the close delimiter.
bool readDelimiterLine(const Delimiter &d, const PB_BYTE *b, PB_INT n, PB_INT *at, bool *closing)
{
    PB_INT i = *at;
    if (n - i >= 4 && b[i] == '\r') {
        if (std::memcmp(b + i, "\r\n--", 4) != 0)
            return false;
        i += 4;
    } else {
        if (i != 0 || n - i < 2 || b[i] != '-' || b[i + 1] != '-')
            return false;
        i += 2;
    }
    if (n - i < d.boundaryLength() || std::memcmp(b + i, d.boundary(), static_cast<size_t>(d.boundaryLength())) != 0)
        return false;
    i += d.boundaryLength();
    if (n - i >= 2 && b[i] == '-' && b[i + 1] == '-') {
        *closing = true;
        return true;
    }
    while (i < n && (b[i] == ' ' || b[i] == '\t'))
        ++i;
    if (n - i < 2 || b[i] != '\r' || b[i + 1] != '\n')
        return false;
    *at = i + 2;
    *closing = false;
    return true;
}

// defect, given to part number (a reference taken over and handed back).
MIME_DEFECT *renumbered(MIME_DEFECT *defect, PB_INT number)
{
    Ref<MIME_DEFECT> held = adopt(defect);
    Ref<PB_STRING> part = adopt(pbStringCreateFromFormatCstr("%i", -1, number));
    Ref<PB_STRING> text = adopt(mimeDefectText(defect));
    return mimeDefectCreate(mimeDefectCode(defect), mimeDefectOffset(defect), part.get(), text.get());
}

} // namespace

PB_VECTOR *mimeMultipartTryUnpack(MIME_CONTENT_TYPE *contentType, PB_BUFFER *content, MIME_OPTIONS *opt) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( content );
    PB_ASSERT( opt );
    return mimeMultipartTryUnpackWithDefect(contentType, content, opt, nullptr);
}

PB_VECTOR *mimeMultipartTryUnpackWithDefect(MIME_CONTENT_TYPE *contentType, PB_BUFFER *content, MIME_OPTIONS *opt,
                                            MIME_DEFECT **defect) noexcept
{
    PB_ASSERT( contentType );
    PB_ASSERT( content );
    PB_ASSERT( opt );
    mime::clearDefect(defect);
    Ref<PB_STRING> boundary = adopt(mimeContentTypeParameterCstr(contentType, "boundary", -1));
    if (!boundary || !mimeMultipartBoundaryOk(boundary.get())) {
        mime::report(defect, MIME_DEFECT_BOUNDARY_INVALID, 0, "is missing or not valid");
        return nullptr;
    }
    Delimiter delimiter(boundary.get());
    std::string_view name(reinterpret_cast<const char *>(delimiter.boundary()),
                          static_cast<size_t>(delimiter.boundaryLength()));
    const PB_BYTE *b = pbBufferBacking(content);
    PB_INT n = pbBufferLength(content);
    Ref<PB_VECTOR> parts = adopt(pbVectorCreate());
    PB_INT at = delimiter.find(b, n, 0);
    if (at < 0) {
        mime::report(defect, MIME_DEFECT_DELIMITER_MISSING, 0, name);
        return nullptr;
    }
    for (;;) {
        bool closing = false;
        PB_INT line = at == 0 ? 0 : at + 2;
        if (!readDelimiterLine(delimiter, b, n, &at, &closing)) {
            mime::report(defect, MIME_DEFECT_DELIMITER_LINE_MALFORMED, line, name);
            return nullptr;
        }
        if (closing)
            return parts.release();
        PB_INT end = delimiter.find(b, n, at);
        if (end < 0) {
            mime::report(defect, MIME_DEFECT_CLOSE_DELIMITER_MISSING, n, name);
            return nullptr;
        }
        Ref<MIME_ENTITY> part = adopt(mime___EntityTryParse(content, at, end - at, defect));
        if (!part) {
            if (defect) // the same defect, named after its part
                *defect = renumbered(*defect, pbVectorLength(parts.get()) + 1);
            return nullptr;
        }
        pbVectorAppendObj(parts.addr(), mimeEntityObj(part.get()));
        at = end;
    }
}

PB_BOOL mimeMultipartBoundaryOkCstr(const char *text, PB_INT length) noexcept
{
    return mimeMultipartBoundaryOk(pb::Text(text, length));
}

PB_BOOL mimeMultipartBoundaryOkWcstr(const wchar_t *text, PB_INT length) noexcept
{
    return mimeMultipartBoundaryOk(pb::Text(text, length));
}
