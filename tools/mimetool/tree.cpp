#include "tree.hpp"

#include "cli.hpp"
#include "text.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace mimetool {
namespace {

// Deeper nesting than any real message uses; the bound keeps hostile input
// from exhausting the stack.
constexpr int kMaxDepth = 64;
constexpr PB_INT kFirstLineScan = 4096;
constexpr PB_INT kFirstLineLength = 80;

std::string_view bytesOf(PB_BUFFER *buf)
{
    return {reinterpret_cast<const char *>(pbBufferBacking(buf)), static_cast<size_t>(pbBufferLength(buf))};
}

// "part N: ..." for a defect of a strict reading, as the library words it;
// base is where the reading's input starts in the message (-1 when it is not
// in the message's bytes): byte offsets are given in the message.
std::string fault(const std::string &number, MIME_DEFECT *defect, PB_INT base)
{
    Ref<PB_STRING> part(mimeDefectPart(defect));
    Ref<PB_STRING> text(mimeDefectText(defect));
    std::string where = "part " + number + (pbStringLength(part.get()) ? "." + utf8(part.get()) : "");
    MIME_DEFECT_CODE code = mimeDefectCode(defect);
    bool inValue = code >= MIME_DEFECT_CONTENT_TYPE_INVALID && code <= MIME_DEFECT_TRANSFER_ENCODING_INVALID;
    if (base >= 0 && !inValue)
        where += ", byte " + std::to_string(base + mimeDefectOffset(defect));
    return where + ": " + utf8(text.get());
}

// Where buf's bytes start in the message's, or -1 when they are not a view of it.
PB_INT offsetIn(PB_BUFFER *buf, PB_BUFFER *message)
{
    const PB_BYTE *b = pbBufferBacking(buf), *m = pbBufferBacking(message);
    return b >= m && b <= m + pbBufferLength(message) ? static_cast<PB_INT>(b - m) : -1;
}

// The message whose bytes the parts are views of, and the options.
struct Reading {
    PB_BUFFER *message;
    MIME_OPTIONS *opt;
};

void decodePart(Part &part, MIME_ENTITY *entity, const Reading &r, PB_INT base, int depth);

void unpackInto(Part &part, const Reading &r, int depth)
{
    if (depth == kMaxDepth)
        throw InputError{"part " + part.number + ": multipart bodies nest deeper than " + std::to_string(kMaxDepth) +
                         " levels"};
    if (!part.body)
        throw InputError{"part " + part.number + ": the multipart entity has no body"};
    Ref<MIME_DEFECT> defect;
    Ref<PB_VECTOR> entities(
        mimeMultipartTryUnpackWithDefect(part.type.get(), part.body.get(), r.opt, defect.receive()));
    PB_INT base = offsetIn(part.body.get(), r.message);
    if (!entities)
        throw InputError{fault(part.number, defect.get(), base)};
    const PB_INT count = pbVectorLength(entities.get());
    part.parts.resize(static_cast<size_t>(count));
    for (PB_INT i = 0; i < count; i++) {
        Part &child = part.parts[static_cast<size_t>(i)];
        child.number = part.number + "." + std::to_string(i + 1);
        Ref<PB_OBJ> entity(pbVectorObjAt(entities.get(), i));
        Ref<PB_BUFFER> body(mimeEntityBody(mimeEntityFrom(entity.get())));
        decodePart(child, mimeEntityFrom(entity.get()), r, body ? offsetIn(body.get(), r.message) : -1, depth + 1);
    }
}

void decodePart(Part &part, MIME_ENTITY *entity, const Reading &r, PB_INT base, int depth)
{
    Ref<MIME_DEFECT> defect;
    if (!mimeDecodeWithDefect(entity, r.opt, part.body.receive(), part.type.receive(), part.disposition.receive(),
                              part.contentId.receive(), defect.receive()))
        throw InputError{fault(part.number, defect.get(), base)};
    if (Ref<PB_STRING> encoding(mimeEntityContentTransferEncoding(entity)); encoding)
        part.encoding = mimeContentTransferEncodingTryDecode(encoding.get(), r.opt);
    if (part.type) {
        Ref<PB_STRING> name(mimeContentTypeName(part.type.get()));
        part.multipart = startsWith(name.get(), "multipart/");
    }
    if (part.multipart)
        unpackInto(part, r, depth);
}

bool isTextType(const Part &part)
{
    if (!part.type)
        return true;
    Ref<PB_STRING> name(mimeContentTypeName(part.type.get()));
    PB_STRING *n = name.get();
    return startsWith(n, "text/") || endsWith(n, "/xml") || endsWith(n, "+xml") || endsWith(n, "/json") ||
           endsWith(n, "+json") || (startsWith(n, "application/sdp") && pbStringLength(n) == 15);
}

} // namespace

Part readMessage(PB_BUFFER *content, MIME_OPTIONS *opt)
{
    Ref<MIME_DEFECT> defect;
    Ref<MIME_ENTITY> entity(mimeEntityTryParseWithDefect(content, opt, defect.receive()));
    if (!entity)
        throw InputError{fault("1", defect.get(), 0)};
    Part message;
    message.number = "1";
    Ref<PB_BUFFER> body(mimeEntityBody(entity.get()));
    decodePart(message, entity.get(), {content, opt}, body ? offsetIn(body.get(), content) : -1, 0);
    return message;
}

Ref<PB_STRING> typeName(const Part &part)
{
    if (!part.type)
        return {};
    Ref<PB_STRING> name(mimeContentTypeName(part.type.get()));
    return Ref<PB_STRING>(mimeContentTypeNameToWireFormat(name.get()));
}

Ref<PB_STRING> suggestedFilename(const Part &part)
{
    Ref<PB_STRING> name;
    if (part.disposition)
        name.reset(mimeContentDispositionParameterCstr(part.disposition.get(), "filename", -1));
    if (!name && part.type)
        name.reset(mimeContentTypeParameterCstr(part.type.get(), "name", -1));
    return name;
}

Ref<PB_STRING> firstLine(const Part &part)
{
    if (!part.body || part.multipart || !isTextType(part))
        return {};
    const std::string_view bytes = bytesOf(part.body.get()).substr(0, kFirstLineScan);
    const size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
    PB_CHARSET charset = PB_CHARSET_UTF_8;
    if (part.type) {
        Ref<PB_STRING> name(mimeContentTypeParameterCstr(part.type.get(), "charset", -1));
        if (name && pbCharsetFromIanaName(name.get()) >= 0)
            charset = pbCharsetFromIanaName(name.get());
    }
    Ref<PB_BUFFER> line(pbBufferRead(part.body.get(), 0, static_cast<PB_INT>(end)));
    Ref<PB_STRING> text(pbCharsetConvertBufferToString(charset, line.get()));
    if (pbStringLength(text.get()) > kFirstLineLength) {
        text.reset(pbStringCreateFromLeading(text.get(), kFirstLineLength));
        for (int i = 0; i < 3; i++)
            pbStringAppendChar(text.address(), '.');
    }
    return text;
}

} // namespace mimetool
