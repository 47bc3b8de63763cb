// mimetool header: one header value decoded into its value object and written back.
#include "cli.hpp"
#include "io.hpp"
#include "text.hpp"
#include "tree.hpp"

#include <charconv>

namespace mimetool {
namespace {

std::string parameterLines(PB_DICT *parameters)
{
    std::string out;
    forEachParameter(parameters, [&](PB_STRING *key, PB_STRING *value) {
        out += "parameter " + shown(key) + ": " + shown(value) + "\n";
    });
    return out;
}

// The wire text on the tool's lines: a fold (CR LF, then a space) becomes a line end.
std::string wireLines(const char *field, PB_STRING *value)
{
    std::string out = std::string("wire: ") + field + ": ";
    for (const char c : mime::toUtf8(value)) {
        if (c != '\r')
            out += c;
    }
    return out + "\n";
}

// The value refused, and where reading it stopped when the library says so.
[[noreturn]] void refused(const char *field, PB_STRING *value, MIME_DEFECT *defect = nullptr)
{
    std::string where = defect ? " (reading stops at character " + std::to_string(mimeDefectOffset(defect)) + ")" : "";
    throw InputError{std::string(field) + " " + excerpt(value) + " is not valid" + where};
}

std::string contentType(PB_STRING *value, MIME_OPTIONS *options)
{
    Ref<MIME_DEFECT> defect;
    Ref<MIME_CONTENT_TYPE> type = adopt(mimeContentTypeTryDecodeWithDefect(value, options, defect.receive()));
    if (!type)
        refused("Content-Type", value, defect.get());
    Ref<PB_STRING> name = adopt(mimeContentTypeName(type.get()));
    Ref<PB_STRING> written = adopt(mimeContentTypeNameToWireFormat(name.get()));
    Ref<PB_STRING> wire = adopt(mimeContentTypeEncode(type.get(), options, MIME_FIRST_LINE_OFFSET_CONTENT_TYPE));
    return "type: " + shown(written.get()) + "\n" + parameterLines(mimeContentTypeParametersDict(type.get())) +
           wireLines("Content-Type", wire.get());
}

std::string contentDisposition(PB_STRING *value, MIME_OPTIONS *options)
{
    Ref<MIME_DEFECT> defect;
    Ref<MIME_CONTENT_DISPOSITION> disposition =
        adopt(mimeContentDispositionTryDecodeWithDefect(value, options, defect.receive()));
    if (!disposition)
        refused("Content-Disposition", value, defect.get());
    Ref<PB_STRING> type = adopt(mimeContentDispositionType(disposition.get()));
    Ref<PB_STRING> wire =
        adopt(mimeContentDispositionEncode(disposition.get(), options, MIME_FIRST_LINE_OFFSET_CONTENT_DISPOSITION));
    return "type: " + shown(type.get()) + "\n" +
           parameterLines(mimeContentDispositionParametersDict(disposition.get())) +
           wireLines("Content-Disposition", wire.get());
}

std::string contentId(PB_STRING *value, MIME_OPTIONS *)
{
    Ref<MIME_DEFECT> defect;
    Ref<PB_STRING> id = adopt(mimeContentIdTryDecodeWithDefect(value, defect.receive()));
    if (!id)
        refused("Content-Id", value, defect.get());
    Ref<PB_STRING> wire = adopt(mimeContentIdEncode(id.get()));
    return "id: " + shown(id.get()) + "\n" + wireLines("Content-Id", wire.get());
}

std::string contentTransferEncoding(PB_STRING *value, MIME_OPTIONS *options)
{
    const MIME_CONTENT_TRANSFER_ENCODING encoding = mimeContentTransferEncodingTryDecode(value, options);
    if (encoding < 0)
        refused("Content-Transfer-Encoding", value);
    Ref<PB_STRING> name = adopt(mimeContentTransferEncodingToString(encoding));
    Ref<PB_STRING> wire =
        adopt(mimeContentTransferEncodingEncode(encoding, options, MIME_FIRST_LINE_OFFSET_CONTENT_TRANSFER_ENCODING));
    return "encoding: " + mime::toUtf8(name.get()) + "\n" + wireLines("Content-Transfer-Encoding", wire.get());
}

struct Field {
    const char *name;
    std::string (*describe)(PB_STRING *value, MIME_OPTIONS *options);
};

constexpr Field kFields[] = {
    {"Content-Type", contentType},
    {"Content-Disposition", contentDisposition},
    {"Content-Id", contentId},
    {"Content-Transfer-Encoding", contentTransferEncoding},
};

Ref<MIME_OPTIONS> headerOptions(Args &args)
{
    Ref<MIME_OPTIONS> options = defaultOptions();
    if (const std::optional<std::string> wrap = args.takeValue("--wrap")) {
        PB_INT length = 0;
        const auto [end, error] = std::from_chars(wrap->data(), wrap->data() + wrap->size(), length);
        if (error != std::errc() || end != wrap->data() + wrap->size() || length < -1)
            throw UsageError{"--wrap " + *wrap + " is not a line length (-1 for none)"};
        mimeOptionsSetWrapLineLength(options.address(), length);
    }
    MIME_FLAGS flags = mimeOptionsFlags(options.get());
    if (args.takeFlag("--no-rfc2231"))
        flags &= ~(MIME_FLAG_PARSE_RFC2231_HEADERS | MIME_FLAG_GENERATE_RFC2231_HEADERS);
    if (args.takeFlag("--unicode"))
        flags |= MIME_FLAG_GENERATE_UNICODE_HEADERS;
    if (flags != mimeOptionsFlags(options.get()))
        mimeOptionsSetFlags(options.address(), flags);
    return options;
}

} // namespace

const Command kHeader = {
    "header",
    "usage: mimetool header [--wrap N] [--no-rfc2231] [--unicode] NAME VALUE\n"
    "\n"
    "Decodes VALUE as the value of the header field NAME (Content-Type,\n"
    "Content-Disposition, Content-Id or Content-Transfer-Encoding, in any case),\n"
    "prints the value object and writes it back as wire text, folded lines on\n"
    "lines of their own.\n"
    "\n"
    "  --wrap N        fold header lines longer than N characters (-1: never; default 76)\n"
    "  --no-rfc2231    neither decode nor write RFC 2231 parameters\n"
    "  --unicode       write parameter values beyond ASCII as they are (without RFC 2231)\n",
    runHeader,
};

int runHeader(Args &args)
{
    Ref<MIME_OPTIONS> options = headerOptions(args);
    const std::vector<std::string> operands = args.operands();
    if (operands.size() != 2)
        throw UsageError{"header takes a field name and a value"};
    Ref<PB_STRING> name = mime::makeString(operands[0]);
    for (const Field &field : kFields) {
        if (pbStringEqualsCaseFoldCstr(name.get(), field.name, -1)) {
            Ref<PB_STRING> value = mime::makeString(operands[1]);
            writeOut(field.describe(value.get(), options.get()));
            return 0;
        }
    }
    throw UsageError{"unknown header field " + operands[0]};
}

} // namespace mimetool
