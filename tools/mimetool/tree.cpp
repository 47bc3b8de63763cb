#include "tree.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"

#include <cstdio>

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
    Ref<PB_STRING> part = adopt(mimeDefectPart(defect));
    Ref<PB_STRING> text = adopt(mimeDefectText(defect));
    std::string where = "part " + number + (pbStringLength(part.get()) ? "." + mime::toUtf8(part.get()) : "");
    MIME_DEFECT_CODE code = mimeDefectCode(defect);
    bool inValue = code >= MIME_DEFECT_CONTENT_TYPE_INVALID && code <= MIME_DEFECT_TRANSFER_ENCODING_INVALID;
    if (base >= 0 && !inValue)
        where += ", byte " + std::to_string(base + mimeDefectOffset(defect));
    return where + ": " + mime::toUtf8(text.get());
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
    Ref<PB_VECTOR> entities =
        adopt(mimeMultipartTryUnpackWithDefect(part.type.get(), part.body.get(), r.opt, defect.receive()));
    PB_INT base = offsetIn(part.body.get(), r.message);
    if (!entities)
        throw InputError{fault(part.number, defect.get(), base)};
    const PB_INT count = pbVectorLength(entities.get());
    part.parts.resize(static_cast<size_t>(count));
    for (PB_INT i = 0; i < count; i++) {
        Part &child = part.parts[static_cast<size_t>(i)];
        child.number = part.number + "." + std::to_string(i + 1);
        Ref<PB_OBJ> entity = adopt(pbVectorObjAt(entities.get(), i));
        Ref<PB_BUFFER> body = adopt(mimeEntityBody(mimeEntityFrom(entity.get())));
        decodePart(child, mimeEntityFrom(entity.get()), r, body ? offsetIn(body.get(), r.message) : -1, depth + 1);
    }
}

void decodePart(Part &part, MIME_ENTITY *entity, const Reading &r, PB_INT base, int depth)
{
    Ref<MIME_DEFECT> defect;
    if (!mimeDecodeWithDefect(entity, r.opt, part.body.receive(), part.type.receive(), part.disposition.receive(),
                              part.contentId.receive(), defect.receive()))
        throw InputError{fault(part.number, defect.get(), base)};
    if (Ref<PB_STRING> encoding = adopt(mimeEntityContentTransferEncoding(entity)); encoding)
        part.encoding = mimeContentTransferEncodingTryDecode(encoding.get(), r.opt);
    if (Ref<PB_BUFFER> raw = adopt(mimeEntityBody(entity)); raw)
        part.encodedSize = pbBufferLength(raw.get());
    if (part.type) {
        Ref<PB_STRING> name = adopt(mimeContentTypeName(part.type.get()));
        part.multipart = startsWith(name.get(), "multipart/");
    }
    if (part.multipart)
        unpackInto(part, r, depth);
}

bool isTextType(const Part &part)
{
    if (!part.type)
        return true;
    Ref<PB_STRING> name = adopt(mimeContentTypeName(part.type.get()));
    PB_STRING *n = name.get();
    return startsWith(n, "text/") || endsWith(n, "/xml") || endsWith(n, "+xml") || endsWith(n, "/json") ||
           endsWith(n, "+json") || (startsWith(n, "application/sdp") && pbStringLength(n) == 15);
}

} // namespace

Part readMessage(PB_BUFFER *content, MIME_OPTIONS *opt)
{
    Ref<MIME_DEFECT> defect;
    Ref<MIME_ENTITY> entity = adopt(mimeEntityTryParseWithDefect(content, opt, defect.receive()));
    if (!entity)
        throw InputError{fault("1", defect.get(), 0)};
    Part message;
    message.number = "1";
    Ref<PB_BUFFER> body = adopt(mimeEntityBody(entity.get()));
    decodePart(message, entity.get(), {content, opt}, body ? offsetIn(body.get(), content) : -1, 0);
    return message;
}

namespace {

std::string numberOf(MIME_PART *part, const std::string &prefix)
{
    Ref<PB_STRING> number = adopt(mimePartNumber(part));
    return prefix + mime::toUtf8(number.get());
}

// The fields a reader looks for in a message, RFC 2047 words decoded.
void readHeadings(MIME_PART *source, Part &part)
{
    for (const char *name : {"From", "Subject", "Date"}) {
        Ref<PB_STRING> value = adopt(mimePartFieldCstr(source, name, -1));
        if (value)
            part.headings.emplace_back(name, adopt(mimeEncodedWordsDecode(value.get())));
    }
}

void convert(MIME_PART *source, Part &part, const std::string &prefix, bool isMessage)
{
    part.number = numberOf(source, prefix);
    part.type = adopt(mimePartContentType(source));
    part.impliedType = mimePartContentTypeImplied(source);
    part.disposition = adopt(mimePartContentDisposition(source));
    part.contentId = adopt(mimePartContentId(source));
    part.encoding = mimePartTransferEncoding(source);
    part.body = adopt(mimePartBody(source));
    part.encodedSize = part.body ? mimePartBodyLength(source) : -1;
    Ref<PB_STRING> name = adopt(mimeContentTypeName(part.type.get()));
    part.multipart = startsWith(name.get(), "multipart/");
    part.message = !part.multipart && mimePartChildCount(source) > 0;
    if (isMessage)
        readHeadings(source, part);
    for (PB_INT i = 0; i < mimePartDefectCount(source); i++) {
        Ref<MIME_DEFECT> defect = adopt(mimePartDefectAt(source, i));
        Ref<PB_STRING> text = adopt(mimeDefectText(defect.get()));
        part.defects.push_back(
            {mimeDefectCode(defect.get()), mimeDefectOffset(defect.get()), mime::toUtf8(text.get())});
    }
    part.parts.resize(static_cast<size_t>(mimePartChildCount(source)));
    for (PB_INT i = 0; i < mimePartChildCount(source); i++) {
        Ref<MIME_PART> child = adopt(mimePartChildAt(source, i));
        convert(child.get(), part.parts[static_cast<size_t>(i)], prefix, part.message);
    }
}

void collectDefects(const Part &part, std::vector<std::string> &out)
{
    for (const Defect &d : part.defects)
        out.push_back("part " + part.number + ", byte " + std::to_string(d.offset) + ": " + d.text);
    for (const Part &child : part.parts)
        collectDefects(child, out);
}

} // namespace

Part readMail(PB_BUFFER *content, MIME_OPTIONS *opt, const std::string &prefix)
{
    Ref<MIME_PART> tree = adopt(mimeMessageRead(content, opt, nullptr));
    Part message;
    convert(tree.get(), message, prefix, true);
    return message;
}

Part readPart(Ref<PB_BUFFER> content, bool strict)
{
    Ref<MIME_OPTIONS> options = defaultOptions();
    if (strict)
        return readMessage(withWireLineEnds(std::move(content)).get(), options.get());
    Part message = readMail(content.get(), options.get());
    std::fputs(warnings(message).c_str(), stderr);
    return message;
}

std::string warnings(const Part &message)
{
    std::vector<std::string> lines;
    collectDefects(message, lines);
    std::string out;
    for (const std::string &line : lines)
        out += "mimetool: " + line + "\n";
    return out;
}

Ref<PB_STRING> typeName(const Part &part)
{
    if (!part.type)
        return {};
    Ref<PB_STRING> name = adopt(mimeContentTypeName(part.type.get()));
    return adopt(mimeContentTypeNameToWireFormat(name.get()));
}

Ref<PB_STRING> suggestedFilename(const Part &part)
{
    Ref<PB_STRING> name;
    if (part.disposition)
        name = adopt(mimeContentDispositionParameterCstr(part.disposition.get(), "filename", -1));
    if (!name && part.type)
        name = adopt(mimeContentTypeParameterCstr(part.type.get(), "name", -1));
    return name;
}

Ref<PB_STRING> firstLine(const Part &part)
{
    if (!part.body || !part.parts.empty() || part.multipart || !isTextType(part))
        return {};
    const std::string_view bytes = bytesOf(part.body.get()).substr(0, kFirstLineScan);
    const size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
    PB_CHARSET charset = PB_CHARSET_UTF_8;
    if (part.type) {
        Ref<PB_STRING> name = adopt(mimeContentTypeParameterCstr(part.type.get(), "charset", -1));
        if (name && pbCharsetFromIanaName(name.get()) >= 0)
            charset = pbCharsetFromIanaName(name.get());
    }
    Ref<PB_BUFFER> line = adopt(pbBufferRead(part.body.get(), 0, static_cast<PB_INT>(end)));
    Ref<PB_STRING> text = adopt(pbCharsetConvertBufferToString(charset, line.get()));
    if (pbStringLength(text.get()) > kFirstLineLength) {
        text = adopt(pbStringCreateFromLeading(text.get(), kFirstLineLength));
        for (int i = 0; i < 3; i++)
            pbStringAppendChar(text.address(), '.');
    }
    return text;
}

} // namespace mimetool
