#include "render.hpp"

#include "text.hpp"

namespace mimetool {
namespace {

// "label; key=value; key="a value"", as a reader expects a header value.
std::string labelled(PB_STRING *label, PB_DICT *parameters)
{
    std::string out = shown(label);
    forEachParameter(parameters,
                     [&](PB_STRING *key, PB_STRING *value) { out += "; " + shown(key) + "=" + shownValue(value); });
    return out;
}

std::string sizeText(const Part &part)
{
    if (!part.body)
        return "no body";
    return byteCount(pbBufferLength(part.body.get()));
}

void printText(const Part &part, int depth, std::string &out)
{
    const std::string indent(static_cast<size_t>(depth) * 2, ' ');
    const std::string detail = indent + std::string(part.number.size() + 1, ' ');
    Ref<PB_STRING> name = typeName(part);
    out += indent + part.number + " " +
           (name ? labelled(name.get(), mimeContentTypeParametersDict(part.type.get())) : "(no Content-Type)") +
           (part.impliedType ? " (implied)" : "") + "\n";
    for (const auto &[field, value] : part.headings)
        out += detail + field + ": " + shown(value.get()) + "\n";
    if (part.disposition) {
        Ref<PB_STRING> type = adopt(mimeContentDispositionType(part.disposition.get()));
        out += detail +
               "disposition: " + labelled(type.get(), mimeContentDispositionParametersDict(part.disposition.get())) +
               "\n";
    }
    if (part.contentId)
        out += detail + "content-id: " + shown(part.contentId.get()) + "\n";
    std::string encoding;
    if (part.encoding >= 0) {
        Ref<PB_STRING> text = adopt(mimeContentTransferEncodingToString(part.encoding));
        encoding = mime::toUtf8(text.get()) + ", ";
    }
    out += detail + encoding + sizeText(part) + "\n";
    if (Ref<PB_STRING> line = firstLine(part); line)
        out += detail + "first line: " + shown(line.get()) + "\n";
    for (const Part &child : part.parts)
        printText(child, depth + 1, out);
}

std::string jsonOrNull(PB_STRING *s)
{
    return s ? jsonString(s) : "null";
}

std::string jsonParameters(PB_DICT *parameters)
{
    std::string out = "{";
    forEachParameter(parameters, [&](PB_STRING *key, PB_STRING *value) {
        out += (out.size() > 1 ? ", " : "") + jsonString(key) + ": " + jsonString(value);
    });
    return out + "}";
}

void printJson(const Part &part, int depth, std::string &out)
{
    const std::string indent(static_cast<size_t>(depth) * 2, ' ');
    const std::string field = indent + "  ";
    Ref<PB_STRING> name = typeName(part);
    out += indent + "{\n";
    out += field + "\"part\": " + jsonString(part.number) + ",\n";
    out += field + "\"type\": " + jsonOrNull(name.get()) + ",\n";
    out += field + "\"impliedType\": " + (part.impliedType ? "true" : "false") + ",\n";
    if (!part.headings.empty()) {
        std::string headers;
        for (const auto &[header, value] : part.headings)
            headers += (headers.empty() ? "" : ", ") + jsonString(header) + ": " + jsonString(value.get());
        out += field + "\"headers\": {" + headers + "},\n";
    }
    out += field +
           "\"parameters\": " + (part.type ? jsonParameters(mimeContentTypeParametersDict(part.type.get())) : "{}") +
           ",\n";
    std::string disposition = "null";
    if (part.disposition) {
        Ref<PB_STRING> type = adopt(mimeContentDispositionType(part.disposition.get()));
        disposition = "{\"type\": " + jsonString(type.get()) + ", \"parameters\": " +
                      jsonParameters(mimeContentDispositionParametersDict(part.disposition.get())) + "}";
    }
    out += field + "\"disposition\": " + disposition + ",\n";
    Ref<PB_STRING> filename = suggestedFilename(part);
    out += field + "\"filename\": " + jsonOrNull(filename.get()) + ",\n";
    out += field + "\"contentId\": " + jsonOrNull(part.contentId.get()) + ",\n";
    Ref<PB_STRING> encoding = adopt(part.encoding >= 0 ? mimeContentTransferEncodingToString(part.encoding) : nullptr);
    out += field + "\"transferEncoding\": " + jsonOrNull(encoding.get()) + ",\n";
    out += field + "\"size\": " + (part.body ? std::to_string(pbBufferLength(part.body.get())) : "null") + ",\n";
    out += field + "\"encodedSize\": " + (part.encodedSize >= 0 ? std::to_string(part.encodedSize) : "null") + ",\n";
    std::string defects;
    for (const Defect &d : part.defects)
        defects += std::string(defects.empty() ? "" : ", ") + "{\"code\": " + jsonString(mimeDefectCodeName(d.code)) +
                   ", \"offset\": " + std::to_string(d.offset) + ", \"text\": " + jsonString(d.text) + "}";
    out += field + "\"defects\": [" + defects + "],\n";
    Ref<PB_STRING> line = firstLine(part);
    out += field + "\"firstLine\": " + jsonOrNull(line.get());
    if (part.multipart || !part.parts.empty()) {
        out += ",\n" + field + "\"parts\": [\n";
        for (size_t i = 0; i < part.parts.size(); i++) {
            printJson(part.parts[i], depth + 2, out);
            out += i + 1 < part.parts.size() ? ",\n" : "\n";
        }
        out += field + "]";
    }
    out += "\n" + indent + "}";
}

} // namespace

std::string treeText(const Part &message)
{
    std::string out;
    printText(message, 0, out);
    return out;
}

std::string treeJson(const Part &message)
{
    std::string out;
    printJson(message, 0, out);
    return out + "\n";
}

} // namespace mimetool
