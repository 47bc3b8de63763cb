#include "tree.hpp"

#include "cli.hpp"
#include "text.hpp"

#include <algorithm>
#include <array>
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

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equalsFolded(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); i++) {
        if (lowered(a[i]) != lowered(b[i]))
            return false;
    }
    return true;
}

bool isUtf8(std::string_view line)
{
    Ref<PB_BUFFER> bytes(pbBufferCreateFromBytesCopy(line.data(), static_cast<PB_INT>(line.size())));
    Ref<PB_STRING> text(
        pbCharsetTryConvertBufferToStringWithFlags(PB_CHARSET_UTF_8, bytes.get(), PB_CHARSET_FLAG_STRICT));
    return static_cast<bool>(text);
}

// Why the library refused a header block, found by walking its lines the way
// the reader does (see mime_entity_parse.h); empty when no line is at fault.
std::string headerBlockFault(std::string_view part)
{
    if (part.substr(0, 2) == "\r\n")
        return {};
    const size_t emptyLine = part.find("\r\n\r\n");
    std::string_view block = part.substr(0, emptyLine);
    if (emptyLine == std::string_view::npos && block.ends_with("\r\n"))
        block.remove_suffix(2); // it ends the last line
    std::array<bool, MIME_ENTITY_FIELD_COUNT> seen{};
    int number = 0;
    while (!block.empty()) {
        const size_t end = block.find("\r\n");
        const std::string_view line = block.substr(0, end);
        block = end == std::string_view::npos ? std::string_view() : block.substr(end + 2);
        const std::string where = "line " + std::to_string(++number);
        if (!isUtf8(line))
            return where + " is not UTF-8";
        if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) {
            if (number == 1)
                return where + " starts with white space but continues no field";
            continue;
        }
        const size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            return where + " is no header field (it has no colon)";
        const std::string_view name = line.substr(0, colon);
        if (name.empty())
            return where + " has an empty field name";
        for (const char c : name) {
            if (static_cast<unsigned char>(c) <= 0x20 || c == 0x7F)
                return where + " has a space or a control character in its field name";
        }
        for (size_t i = 0; i < seen.size(); i++) {
            if (equalsFolded(name, mimeEntityFieldName(static_cast<PB_INT>(i))) && std::exchange(seen[i], true))
                return where + " repeats the field " + std::string(name);
        }
    }
    return {};
}

// Why the library refused a multipart body: the boundary, the delimiter lines,
// then the header block of each part.
std::string multipartFault(MIME_CONTENT_TYPE *type, PB_BUFFER *body, const std::string &number)
{
    const std::string where = "part " + number + ": ";
    Ref<PB_STRING> boundary(mimeContentTypeParameterCstr(type, "boundary", -1));
    if (!boundary)
        return where + "the multipart type has no boundary parameter";
    if (!mimeMultipartBoundaryOk(boundary.get()))
        return where + "the boundary " + excerpt(boundary.get()) + " is not valid";
    const std::string dash = "--" + utf8(boundary.get());
    const std::string delimiter = "\r\n" + dash;
    const std::string_view content = bytesOf(body);
    size_t at = content.substr(0, dash.size()) == dash ? 0 : content.find(delimiter);
    if (at == std::string_view::npos)
        return where + "the body holds no delimiter line " + dash;
    at += at == 0 && content.substr(0, dash.size()) == dash ? 0 : 2;
    for (int index = 1;; index++) {
        size_t afterDash = at + dash.size();
        const bool close = content.substr(afterDash, 2) == "--";
        afterDash += close ? 2 : 0;
        const size_t lineEnd = std::min(content.find("\r\n", afterDash), content.size());
        if (content.substr(afterDash, lineEnd - afterDash).find_first_not_of(" \t") != std::string_view::npos)
            return where + "a delimiter line holds more than " + dash + " and padding";
        if (close)
            return where + "the multipart body is malformed";
        const size_t next = content.find(delimiter, lineEnd);
        if (next == std::string_view::npos)
            return where + "the close delimiter " + dash + "-- is missing";
        const size_t partStart = std::min(lineEnd + 2, next);
        const std::string fault = headerBlockFault(content.substr(partStart, next - partStart));
        if (!fault.empty())
            return "part " + number + "." + std::to_string(index) + ": " + fault;
        at = next + 2;
    }
}

// Which of the entity's fields mimeDecode refused.
std::string decodeFault(MIME_ENTITY *entity, MIME_OPTIONS *opt)
{
    Ref<PB_STRING> value(mimeEntityContentType(entity));
    if (value && !Ref<MIME_CONTENT_TYPE>(mimeContentTypeTryDecode(value.get(), opt)))
        return "Content-Type " + excerpt(value.get()) + " is not valid";
    value.reset(mimeEntityContentDisposition(entity));
    if (value && !Ref<MIME_CONTENT_DISPOSITION>(mimeContentDispositionTryDecode(value.get(), opt)))
        return "Content-Disposition " + excerpt(value.get()) + " is not valid";
    value.reset(mimeEntityContentId(entity));
    if (value && !Ref<PB_STRING>(mimeContentIdTryDecode(value.get())))
        return "Content-Id " + excerpt(value.get()) + " is not valid";
    value.reset(mimeEntityContentTransferEncoding(entity));
    const MIME_CONTENT_TRANSFER_ENCODING encoding = value ? mimeContentTransferEncodingTryDecode(value.get(), opt) : -1;
    if (value && encoding < 0)
        return "Content-Transfer-Encoding " + excerpt(value.get()) + " is not valid";
    Ref<PB_STRING> name(mimeContentTransferEncodingToString(encoding));
    return "the body is not valid " + utf8(name.get());
}

void decodePart(Part &part, MIME_ENTITY *entity, MIME_OPTIONS *opt, int depth);

void unpackInto(Part &part, MIME_OPTIONS *opt, int depth)
{
    if (depth == kMaxDepth)
        throw InputError{"part " + part.number + ": multipart bodies nest deeper than " + std::to_string(kMaxDepth) +
                         " levels"};
    if (!part.body)
        throw InputError{"part " + part.number + ": the multipart entity has no body"};
    Ref<PB_VECTOR> entities(mimeMultipartTryUnpack(part.type.get(), part.body.get(), opt));
    if (!entities)
        throw InputError{multipartFault(part.type.get(), part.body.get(), part.number)};
    const PB_INT count = pbVectorLength(entities.get());
    part.parts.resize(static_cast<size_t>(count));
    for (PB_INT i = 0; i < count; i++) {
        Part &child = part.parts[static_cast<size_t>(i)];
        child.number = part.number + "." + std::to_string(i + 1);
        Ref<PB_OBJ> entity(pbVectorObjAt(entities.get(), i));
        decodePart(child, mimeEntityFrom(entity.get()), opt, depth + 1);
    }
}

void decodePart(Part &part, MIME_ENTITY *entity, MIME_OPTIONS *opt, int depth)
{
    if (!mimeDecode(entity, opt, part.body.receive(), part.type.receive(), part.disposition.receive(),
                    part.contentId.receive()))
        throw InputError{"part " + part.number + ": " + decodeFault(entity, opt)};
    if (Ref<PB_STRING> encoding(mimeEntityContentTransferEncoding(entity)); encoding)
        part.encoding = mimeContentTransferEncodingTryDecode(encoding.get(), opt);
    if (part.type) {
        Ref<PB_STRING> name(mimeContentTypeName(part.type.get()));
        part.multipart = startsWith(name.get(), "multipart/");
    }
    if (part.multipart)
        unpackInto(part, opt, depth);
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
    Ref<MIME_ENTITY> entity(mimeEntityTryParse(content, opt));
    if (!entity) {
        const std::string fault = headerBlockFault(bytesOf(content));
        throw InputError{"part 1: " + (fault.empty() ? std::string("the header block is malformed") : fault)};
    }
    Part message;
    message.number = "1";
    decodePart(message, entity.get(), opt, 0);
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
